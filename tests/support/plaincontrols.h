#pragma once

#include <sdk/ifactorycorrectioncontrol.h>
#include <sdk/itemperaturecontrol.h>
#include <sdk/service/calibrations/icalibrationcontroller.h>
#include <sdk/service/ifilememorycontrol.h>
#include <sdk/service/iloleakagecontrol.h>
#include <sdk/service/imemoryoperationscontrol.h>
#include <sdk/service/imemoryserialnumbercontrol.h>
#include <sdk/service/imemoryusbidcontrol.h>
#include <sdk/service/ipotentiometerscontrol.h>
#include <sdk/service/isystemtermscontrol.h>
#include <sdk/service/ivellfactorypowercalibrationcontrol.h>
#include <sdk/service/ivellifswcalibrationcontrol.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// SDK controls that neither lock nor allocate on their own account, as mocks do. They complete on the
/// calling thread, and answer nothing that is neutral.
namespace tarn::tests {

class PlainControl {
public:
    std::function<void()> inside; ///< runs first in every call

protected:
    void called() const
    {
        if (inside)
            inside();
    }

    /// Longer than a string keeps in itself.
    static std::string aName() { return "a name that needs memory of its own"; }
};

class PlainLoLeakageControl final : public sdk::service::ILoLeakageControl, public PlainControl {
public:
    bool isEnabled() override
    {
        called();
        return enabled;
    }
    void setEnabled(bool value) override
    {
        called();
        enabled = value;
    }

    bool enabled = true;
};

class PlainFileMemoryControl final : public sdk::service::IFileMemoryControl, public PlainControl {
public:
    bool isAvailable() override
    {
        called();
        return true;
    }
    void fileList(sdk::Completion<std::vector<FileInfo>> completion) override
    {
        called();
        completion({{aName(), 1}}, {});
    }
    void spaceInfo(sdk::Completion<SpaceInfo> completion) override
    {
        called();
        completion({}, {});
    }
    void readFile(const FileInfo& /*file*/, sdk::Completion<std::vector<std::uint8_t>> completion) override
    {
        called();
        completion({1, 2, 3}, {});
    }
    void writeFile(std::string /*name*/, std::vector<std::uint8_t> /*contents*/, sdk::Completion<> completion) override
    {
        called();
        completion({});
    }
    void deleteFile(const FileInfo& /*file*/, sdk::Completion<> completion) override
    {
        called();
        completion({});
    }
};

class PlainMemoryOperationsControl final : public sdk::service::IMemoryOperationsControl, public PlainControl {
public:
    using Image = std::vector<std::byte>;

    bool isAvailable() override { return true; }
    void read(sdk::Completion<Image> completion) override
    {
        called();
        completion(Image(3), {});
    }
    void write(Image /*image*/, sdk::Completion<> completion) override
    {
        called();
        completion({});
    }
    void erase(sdk::Completion<> completion) override
    {
        called();
        completion({});
    }
    void integrityCheck(sdk::Completion<> completion) override
    {
        called();
        completion({});
    }
    void addObserver(IObserver* observer) override
    {
        called();
        attached = observer;
    }
    void removeObserver(IObserver* /*observer*/) override { called(); }

    IObserver* attached = nullptr;
};

class PlainMemorySerialNumberControl final : public sdk::service::IMemorySerialNumberControl, public PlainControl {
public:
    bool isAvailable() override { return true; }
    void serialNumber(sdk::Completion<unsigned int> completion) override
    {
        called();
        completion(1, {});
    }
    void writeSerialNumber(unsigned int /*number*/, sdk::Completion<> completion) override
    {
        called();
        completion({});
    }
    void addObserver(Observer* /*observer*/) override { called(); }
    void removeObserver(Observer* /*observer*/) override { called(); }
};

class PlainPotentiometersControl final : public sdk::service::IPotentiometersControl, public PlainControl {
public:
    bool isAvailable() override { return true; }
    std::vector<Potentiometer> potentiometers() override
    {
        called();
        return {{aName(), 0, 255}};
    }
    void readFromEeprom(unsigned long /*index*/, sdk::Completion<int> completion) override
    {
        called();
        completion(1, {});
    }
    void writeToRam(unsigned long /*index*/, int /*value*/, sdk::Completion<> completion) override
    {
        called();
        completion({});
    }
    void writeToEeprom(unsigned long /*index*/, int /*value*/, sdk::Completion<> completion) override
    {
        called();
        completion({});
    }
};

class PlainMemoryUsbIdControl final : public sdk::service::IMemoryUsbIdControl, public PlainControl {
public:
    bool isAvailable() override { return true; }
    DeviceRecord currentDevice() override
    {
        called();
        return aDevice();
    }
    std::vector<DeviceRecord> supportedDevices() override
    {
        called();
        return {aDevice(), aDevice()};
    }
    void writeUsbId(const UsbId& /*usbId*/, sdk::Completion<> completion) override
    {
        called();
        completion({});
    }

private:
    static DeviceRecord aDevice() { return {{}, sdk::Model{"a model whose name needs memory"}, 1, {}}; }
};

class PlainSystemTermsControl final : public sdk::service::ISystemTermsControl, public PlainControl {
public:
    void addObserver(Observer* observer) override
    {
        called();
        attached = observer;
    }
    void removeObserver(Observer* /*observer*/) override { called(); }
    sdk::FrequencyPlan frequencyPlan() override
    {
        called();
        return {{{1.0, 2.0, 3}}};
    }
    std::uint32_t portCount() override { return 2; }
    std::uint32_t maximumPointCount() override { return 1; }
    void writeTerms(std::int64_t /*time*/, sdk::corrections::ErrorTerms /*terms*/, double /*temperature*/) override
    {
        called();
        ++writes;
    }
    bool isFrequencyOverrideSupported() override
    {
        called();
        return true;
    }
    void writeTermsForPlan(std::int64_t /*time*/, sdk::FrequencyPlan /*plan*/, sdk::corrections::ErrorTerms /*terms*/,
                           double /*temperature*/) override
    {
        called();
        ++writes;
    }

    Observer* attached = nullptr;
    int writes = 0;
};

class PlainVellIfswCalibrationControl final : public sdk::service::IVellIfswCalibrationControl, public PlainControl {
public:
    void addObserver(Observer* observer) override
    {
        called();
        attached = observer;
    }
    void removeObserver(Observer* /*observer*/) override
    {
        called();
        attached = nullptr;
    }
    sdk::FrequencyPlan frequencyPlan() override
    {
        called();
        return {{{1.0, 2.0, 3}}};
    }
    void saveCalibrationData(IfswCalibrationData /*data*/) override { called(); }

    Observer* attached = nullptr;
};

class PlainVellFactoryPowerCalibrationControl final : public sdk::service::IVellFactoryPowerCalibrationControl,
                                                      public PlainControl {
public:
    void addObserver(Observer* observer) override
    {
        called();
        attached = observer;
    }
    void removeObserver(Observer* /*observer*/) override
    {
        called();
        attached = nullptr;
    }
    sdk::FrequencyPlan frequencyPlan() override
    {
        called();
        return {{{1.0, 2.0, 3}}};
    }
    void saveCalibrationData(std::int64_t /*time*/, std::vector<PowerCalPoint> /*points*/,
                             double /*temperature*/) override
    {
        called();
    }

    Observer* attached = nullptr;
};

class PlainFactoryCorrectionControl final : public sdk::IFactoryCorrectionControl, public PlainControl {
public:
    sdk::CorrectionFlag supportedCorrections() override { return all(); }
    sdk::CorrectionFlag validCorrections() override { return all(); }
    sdk::CorrectionFlag enabledCorrections() override { return all(); }
    sdk::CorrectionFlag modifiableCorrections() override { return all(); }
    void setEnabled(sdk::CorrectionFlag /*correction*/, bool /*enabled*/) override { called(); }
    void addObserver(Observer* /*observer*/) override { called(); }
    void removeObserver(Observer* /*observer*/) override { called(); }

private:
    [[nodiscard]] sdk::CorrectionFlag all() const
    {
        called();
        return static_cast<sdk::CorrectionFlag>(0xffff);
    }
};

class PlainTemperatureControl final : public sdk::ITemperatureControl, public PlainControl {
public:
    float temperature() override
    {
        called();
        return value;
    }
    const ModuleTemperatures& moduleTemperatures() override
    {
        called();
        modules["LO"] = value;
        return modules;
    }
    void addObserver(Observer* observer) override
    {
        called();
        attached = observer;
    }
    void removeObserver(Observer* /*observer*/) override
    {
        called();
        attached = nullptr;
    }

    float value = 1.0F;
    Observer* attached = nullptr;
    ModuleTemperatures modules;
};

class PlainCalibrationController final : public sdk::service::calibrations::ICalibrationController,
                                         public PlainControl {
public:
    void addObserver(Observer* /*observer*/) override
    {
        called();
        ++registrations;
    }
    void removeObserver(Observer* /*observer*/) override
    {
        called();
        ++removals;
    }
    std::vector<sdk::service::calibrations::ICalibrationUnit*> units() override { return {}; }

    int registrations = 0;
    int removals = 0;
};

} // namespace tarn::tests
