#include <conformance/bench.h>

#include <chrono>
#include <exception>
#include <thread>

namespace tarn::conformance {

bool Bench::call(const std::string& where, const std::function<void()>& step, Record::Kind kind) const
{
    try {
        const Record::Call call{m_record, where, kind};
        step();
        return true;
    } catch (const Interruption&) {
        throw;
    } catch (const std::exception& error) {
        m_record->note(where, std::string{"threw: "} + error.what());
    } catch (...) { // a device may throw anything
        m_record->note(where, "threw something");
    }
    return false;
}

std::shared_ptr<void> Bench::control(const std::string& name, sdk::Key key) const
{
    std::shared_ptr<void> control;
    call("control " + name, [&] { control = m_device->control(key); });
    return control;
}

Description Bench::describe(const ControlRow& row) const
{
    const std::string name{row.name};
    Description description{row.name, {}, {}, {}, {}, {}, {}};
    if (auto found = control(name, row.key))
        call(name, [&] { row.describe(description, std::move(found)); });
    return description;
}

std::vector<Description> Bench::describeAll() const
{
    std::vector<Description> all;
    for (const auto& row : controlRows())
        all.push_back(describe(row));
    return all;
}

Request::State Bench::ask(const Question& question) const
{
    const auto request = Request::make(m_record, question);
    if (question.isPuttingBack)
        return request->wait();
    return request ? wait(*request) : Request::State{};
}

Request::State Bench::wait(const Request& request) const
{
    const auto state = request.wait();
    if (options().stop.stop_requested())
        throw Interruption{};
    return state;
}

bool Bench::add(const std::string& where, const Registration& registration) const
{
    return call(where + " addObserver", registration.add);
}

bool Bench::remove(const std::string& where, const Registration& registration) const
{
    return call(where + " removeObserver", registration.remove);
}

void Bench::settle()
{
    std::this_thread::sleep_for(std::chrono::milliseconds{60});
}

Bench::Change::Change(Bench& bench, std::function<void()> putBack)
    : m_bench{bench}
{
    const utils::MutexLock lock{m_bench.m_mutex};
    m_bench.m_changes.push_back(std::move(putBack));
}

Bench::Change::~Change()
{
    m_bench.putBackLast();
}

void Bench::putBackLast()
{
    std::function<void()> putBack;
    {
        const utils::MutexLock lock{m_mutex};
        if (m_changes.empty())
            return; // somebody else did, as this thread did not come back in time
        putBack = std::move(m_changes.back());
        m_changes.pop_back();
    }
    putBack();
}

void Bench::putBack()
{
    const auto isLeft = [this] {
        const utils::MutexLock lock{m_mutex};
        return !m_changes.empty();
    };
    while (isLeft())
        putBackLast();
}

void Bench::close()
{
    if (m_device)
        call("closing the device", [this] { m_device.reset(); }, Record::Kind::PutBack);
}

} // namespace tarn::conformance
