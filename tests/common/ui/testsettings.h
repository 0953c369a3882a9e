#pragma once

#include "common/session/settings/configuration.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

namespace vantrel::test {

/// The program's settings in a folder of their own, gone with it.
class TestSettings
{
public:
    TestSettings()
    {
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, m_folder.path());
        m_settings = std::make_unique<Configuration>();
        m_settings->clear();
    }

    Configuration* operator->() const { return m_settings.get(); }
    Configuration& operator*() const { return *m_settings; }
    /// As the end of the program does.
    void close()
    {
        if (m_settings)
            m_settings->sync();
        m_settings.reset();
    }
    /// A second look at the same file, as a later run of the program would take it.
    void reopen()
    {
        close();
        m_settings = std::make_unique<Configuration>();
    }

private:
    QTemporaryDir m_folder;
    std::unique_ptr<Configuration> m_settings;
};

} // namespace vantrel::test
