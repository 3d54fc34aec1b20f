#pragma once

#include <sdk/ivna.h>
#include <sdk/visibility.h>

#include <QList>
#include <QString>
#include <QtPlugin>

#include <expected>
#include <memory>

namespace tarn::provider {

/// One instrument that a provider can open.
struct Address {
    QString address; ///< what `IDeviceProvider::open` takes
    QString description; ///< one line for people
};

/// One option of a provider's addresses. It stands in an address as `name=value`, after a comma if
/// anything stands before it.
struct AddressOption {
    QString name; ///< as written in an address
    QString value; ///< the form of its value, for example "N" or "TIME"
    QString defaultValue; ///< what holds when it is absent
    QString description; ///< one line for people
};

/// Why an instrument could not be opened.
struct OpenError {
    /// What kind of reason it is; a host may decide by it.
    enum class Code {
        NotFound, ///< there is no instrument at the address
        InvalidAddress, ///< the address cannot be understood
        Busy, ///< somebody else holds the instrument
        State, ///< what the provider keeps on disk cannot be used
        Failed, ///< anything else
    };

    Code code; ///< the kind of reason
    QString message; ///< what is wrong; names the address, file or holder
    QString hint; ///< what to do next
};

/// Where and how to open an instrument.
struct OpenRequest {
    QString address; ///< empty: the provider's default instrument
    QString stateFolder; ///< where the provider may keep what must last; "none": keep nothing
};

/// How a host gets a device. Implemented by a Qt plug-in whose root object derives from it.
///
/// Threads: bound to the thread that uses it first; at once.
///
/// The devices that it opens are independent of each other and outlive neither the provider nor its
/// plug-in.
class SDK_API IDeviceProvider {
public:
    IDeviceProvider() = default;
    IDeviceProvider(const IDeviceProvider&) = delete;
    IDeviceProvider& operator=(const IDeviceProvider&) = delete;
    virtual ~IDeviceProvider() = default;

    /// The name by which a host selects the provider: lower-case letters, digits and hyphens.
    [[nodiscard]] virtual QString name() const = 0;

    /// One line for people.
    [[nodiscard]] virtual QString description() const = 0;

    /// Whether nothing real can be harmed by whatever is done with the instruments: they are simulated,
    /// and a host may change them without asking.
    [[nodiscard]] virtual bool isSimulated() const = 0;

    /// How an address is written, one line for people.
    [[nodiscard]] virtual QString addressSyntax() const = 0;

    /// The options that an address may carry.
    [[nodiscard]] virtual QList<AddressOption> addressOptions() const = 0;

    /// The instruments that can be opened now; the first one is the default.
    [[nodiscard]] virtual QList<Address> addresses() const = 0;

    /// Connects to an instrument.
    ///
    /// Threads: bound to the same thread; blocks while it connects or waits for another holder.
    [[nodiscard]] virtual std::expected<std::shared_ptr<sdk::IVna>, OpenError> open(const OpenRequest& request) = 0;
};

} // namespace tarn::provider

/// The number is the version of this interface and of the SDK contract; a plug-in made for another
/// one is refused when it is loaded.
#define TARN_DEVICE_PROVIDER_IID "tarn.DeviceProvider/2"
Q_DECLARE_INTERFACE(tarn::provider::IDeviceProvider, TARN_DEVICE_PROVIDER_IID)
