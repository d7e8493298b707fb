#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

// What a test needs around a real MainWindow: its own temporary folder (also the system
// temporary location, so caches and staging folders stay inside it, and the user's
// configuration folder), a working directory
// holding a "tarngui_lite.json" whose "lite" variant is the built stand-in processor (so the
// start-up check passes), and no settings file beside the test executable before or after.
class WindowFixture
{
public:
    explicit WindowFixture(bool withConfiguration = true);
    ~WindowFixture();
    WindowFixture(const WindowFixture &) = delete;
    WindowFixture &operator=(const WindowFixture &) = delete;

    QString path(const QString &relative) const;
    QString workDir() const { return path(QStringLiteral("cwd")); }

    // The configuration the window finds, in the working directory.
    void writeConfiguration(const QByteArray &json) const;
    void useProcessor(const QString &executable, const QString &workDir,
                      const QByteArray &extraVariantJson = {}) const;
    void removeConfiguration() const;

    static QString settingsPath();
    static QString demoProcessorDir();
    static QString demoProcessor();
    static void removeSettings();

private:
    QTemporaryDir m_dir;
    QString m_previousCwd;
};
