#include <simulator/potentiometers.h>

#include <utility>

namespace tarn::simulator {

namespace {

class PotentiometersControl final : public sdk::service::IPotentiometersControl {
public:
    explicit PotentiometersControl(std::shared_ptr<Bench> bench)
        : m_bench{std::move(bench)}
    {
    }

    bool isAvailable() override
    {
        return m_bench->operations.call([] { return true; });
    }

    std::vector<Potentiometer> potentiometers() override { return m_bench->operations.call(&PotentiometerModel::list); }

    void readFromEeprom(unsigned long index, sdk::Completion<int> completion) override
    {
        m_bench->operations.request(std::move(completion),
                                    [&model = model(), index] { return model.readEeprom(index); });
    }

    void writeToRam(unsigned long index, int value, sdk::Completion<> completion) override
    {
        m_bench->operations.request(std::move(completion),
                                    [&model = model(), index, value] { return model.writeRam(index, value); });
    }

    void writeToEeprom(unsigned long index, int value, sdk::Completion<> completion) override
    {
        m_bench->operations.request(std::move(completion),
                                    [&model = model(), index, value] { return model.writeEeprom(index, value); });
    }

private:
    [[nodiscard]] PotentiometerModel& model() const { return m_bench->potentiometers; }

    const std::shared_ptr<Bench> m_bench;
};

} // namespace

MakeControl installPotentiometers(const std::shared_ptr<Bench>& bench)
{
    return [bench]() -> std::shared_ptr<sdk::service::IPotentiometersControl> {
        return std::make_shared<PotentiometersControl>(bench);
    };
}

} // namespace tarn::simulator
