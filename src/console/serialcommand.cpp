#include <console/change.h>
#include <console/commandline.h>
#include <console/commandtable.h>
#include <console/confirmation.h>
#include <console/number.h>
#include <console/text.h>
#include <console/tourcommand.h>

#include <QJsonObject>

#include <memory>
#include <string>

namespace tarn::console {

namespace {

using Control = SerialCommand::Control;

constexpr auto advice
    = "'tarn-service serial show' tells what the serial number is now; write it again if it is not what it should be";

class ProgressObserver final : public Control::IObserver {
public:
    explicit ProgressObserver(LongRequest& request)
        : m_request{request}
    {
    }

    void onWriteProgressChanged(const devices::service::Progress& progress) override { m_request.onProgress(progress); }

private:
    LongRequest& m_request;
};

unsigned int read(const Instrument& instrument)
{
    const Question question{"read its serial number",
                            Error{ErrorCode::Failed, "the instrument could not read its serial number",
                                  "check the instrument, then try again"}};
    return ask<Control>(instrument, question, [](const Control& control) { return control.serialNumber(); });
}

void write(Session& session, unsigned int number)
{
    InterruptWarning warning{session.output()};
    const Change change{.doing = "writing the serial number",
                        .target = "the serial number",
                        .leftBehind = "the serial number may be left neither the old nor the new one",
                        .advice = advice,
                        .progress = OperationName{"write", "writing the serial number", OperationName::Unit::Steps}};
    make<Control>(change, session.instrument(), session.output(), warning,
                  [&](Control& control, LongRequest& longRequest) {
                      ProgressObserver observer{longRequest};
                      const Registration registration{control, static_cast<Control::IObserver&>(observer)};
                      return control.writeSerialNumber(number);
                  });
    confirm(change, session.output(), warning, fmt::format("the serial number {} was written", number),
            [&] { return read(session.instrument()) == number; });
}

QJsonObject json(unsigned int number)
{
    return {{QStringLiteral("serialNumber"), toJson(std::uint64_t{number})}};
}

void show(Session& session)
{
    const auto number = read(session.instrument());
    session.output().result(json(number), fmt::format("{}", number));
}

struct WriteOptions {
    std::string number;
    Confirmation confirmation;
};

void writeNumber(Session& session, const WriteOptions& options)
{
    const auto& output = session.output();
    const auto parsed = parseNumber<unsigned int>(options.number);
    if (!parsed)
        throw Error{ErrorCode::Usage, fmt::format("NUMBER: '{}' is not a number from 0 to 4294967295", options.number),
                    "write it in decimal digits"};
    const auto number = *parsed;
    const auto old = read(session.instrument());
    const bool identical = old == number;
    if (!identical) {
        options.confirmation.obtain(output, "writing the serial number",
                                    fmt::format("Change the instrument's serial number from {} to {}?", old, number));
        write(session, number);
    }
    auto result = json(number);
    result.insert(QStringLiteral("status"), identical ? QStringLiteral("identical") : QStringLiteral("written"));
    output.done(result,
                identical ? fmt::format("the serial number is {} already", number)
                          : fmt::format("wrote the serial number {}, read back and compared", number));
}

void addVerbs(CommandLine& line, Command noun)
{
    noun.addExamples({"serial show", "serial write 20417"});
    line.addVerb(noun, "show", "Show the serial number", &show);

    const auto write = std::make_shared<WriteOptions>();
    const auto verb = line.addVerb(noun, "write", "Write the serial number, after asking; read it back and compare",
                                   [write](Session& session) { writeNumber(session, *write); });
    verb.addWord("NUMBER", write->number, "The new serial number, from 0 to 4294967295");
    write->confirmation.addTo(verb);
    verb.addExamples({"serial write 20417", "serial write 20417 --yes"});
}

} // namespace

void SerialCommand::addTo(CommandLine& line)
{
    line.addNoun("serial", "The instrument's serial number", &addVerbs);
}

void SerialCommand::tour(Tour& tour)
{
    const auto number = read(tour.instrument());
    tour.show("number", fmt::format("{}", number), toJson(std::uint64_t{number}));
}

} // namespace tarn::console
