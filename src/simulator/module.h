#pragma once

#include <simulator/bench.h>
#include <simulator/settingsarchive.h>
#include <utils/mutex.h>

#include <QJsonObject>
#include <QString>

#include <functional>
#include <stdexcept>

namespace tarn::simulator {

/// What a setting adds to the temperature of one of the instrument's modules.
struct Rise {
    const char* module;
    double kelvin;
};

/// A module with settings, which are kept in the storage until the power goes. Thread-safe.
///
/// `Record` holds the settings, with their defaults, and the name of its section. `fields` lists them. A function
/// `checkTogether` throws if they do not fit together, and `rises` says how they heat, for modules that need one.
template <class Record>
class Module {
public:
    /// As the storage says. Throws `StateError` if that cannot be used.
    explicit Module(Bench& bench)
        : m_bench{bench}
        , m_record{load(*bench.storage)}
    {
        const utils::MutexLock lock{m_mutex};
        heat();
    }

    /// One setting, or what a function makes of the record.
    [[nodiscard]] auto get(auto projection) const
    {
        const utils::MutexLock lock{m_mutex};
        return std::invoke(projection, m_record);
    }

    /// Changes the settings by `change(record)`. Throws, and leaves them as they were, if they cannot be so or cannot
    /// be saved.
    void change(auto change)
    {
        this->change(change, [this](const QJsonObject& sections) {
            if (m_bench.storage->save(sections, {}))
                throw std::runtime_error{"the setting could not be saved and stays as it was; check that the state "
                                         "folder is there and its disk is not full"};
        });
    }

    /// The same for those who save the module together with something else: `save(sections)` throws if it cannot.
    void change(auto change, auto save)
    {
        const utils::MutexLock lock{m_mutex};
        auto changed = m_record;
        change(changed);
        check(changed);
        save(sectionsOf(changed));
        take(changed);
    }

    /// The power goes and comes back.
    void cyclePower()
    {
        const utils::MutexLock lock{m_mutex};
        take({});
        // The power has gone, whether or not this can be saved.
        static_cast<void>(m_bench.storage->save(sectionsOf(m_record), {}));
    }

private:
    static QString section() { return QString::fromLatin1(Record::section); }

    static void check(const Record& record)
    {
        SettingsChecker checker;
        fields(checker, record);
        if constexpr (requires { checkTogether(record); })
            checkTogether(record);
    }

    static Record load(const Storage& storage)
    {
        Record record;
        const auto saved = storage.section(section());
        if (saved.isUndefined())
            return record;
        try {
            SettingsReader reader{saved.toObject()};
            fields(reader, record);
            check(record);
        } catch (const std::logic_error& reason) {
            storage.refuse(QStringLiteral("\"%1\": %2").arg(section(), QString::fromUtf8(reason.what())));
        }
        return record;
    }

    static QJsonObject sectionsOf(const Record& record)
    {
        SettingsWriter writer;
        fields(writer, record);
        return {{section(), writer.object()}};
    }

    void take(const Record& record) TARN_REQUIRES(m_mutex)
    {
        m_record = record;
        heat();
    }

    void heat() TARN_REQUIRES(m_mutex)
    {
        if constexpr (requires { rises(m_record); }) {
            for (const auto& rise : rises(m_record))
                m_bench.thermal.setExtraRise(rise.module, Record::section, rise.kelvin, m_bench.clock->now());
        }
    }

    Bench& m_bench;
    mutable utils::Mutex m_mutex;
    Record m_record TARN_GUARDED_BY(m_mutex);
};

} // namespace tarn::simulator
