#include "WindowFixture.h"

#include "TestFiles.h"

#include "app/SettingsLocation.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

WindowFixture::WindowFixture(bool withConfiguration)
    : m_previousCwd(QDir::currentPath())
{
    removeSettings();
    QDir().mkpath(path(QStringLiteral("tmp")));
    QDir().mkpath(workDir());
    qputenv("TMPDIR", QFile::encodeName(path(QStringLiteral("tmp"))));
    // Settings that cannot be kept beside the program go to the user's configuration folder.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(path(QStringLiteral("config"))));
    QDir::setCurrent(workDir());
    if (withConfiguration)
        useProcessor(demoProcessor(), demoProcessorDir());
}

WindowFixture::~WindowFixture()
{
    QDir::setCurrent(m_previousCwd);
    removeSettings();
}

QString WindowFixture::path(const QString &relative) const { return m_dir.filePath(relative); }

void WindowFixture::writeConfiguration(const QByteArray &json) const
{
    TestFiles::write(QDir(workDir()).filePath(QStringLiteral("tarngui_lite.json")), json);
}

void WindowFixture::useProcessor(const QString &executable, const QString &processorWorkDir,
                                 const QByteArray &extraVariantJson) const
{
    QJsonObject variant{{QStringLiteral("executable"), executable},
                        {QStringLiteral("work_dir"), processorWorkDir}};
    if (!extraVariantJson.isEmpty()) {
        const QJsonObject extra = QJsonDocument::fromJson(extraVariantJson).object();
        for (auto it = extra.begin(); it != extra.end(); ++it)
            variant.insert(it.key(), it.value());
    }
    const QJsonObject root{{QStringLiteral("active_variant"), QStringLiteral("lite")},
                           {QStringLiteral("variants"), QJsonObject{{QStringLiteral("lite"), variant}}}};
    writeConfiguration(QJsonDocument(root).toJson());
}

void WindowFixture::removeConfiguration() const
{
    QFile::remove(QDir(workDir()).filePath(QStringLiteral("tarngui_lite.json")));
}

QString WindowFixture::settingsPath()
{
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("VeloraOfflineTool.ini"));
}

QString WindowFixture::demoProcessorDir()
{
    return QDir(TestFiles::binDir()).filePath(QStringLiteral("processor"));
}

QString WindowFixture::demoProcessor()
{
    return QDir(demoProcessorDir()).filePath(QStringLiteral("TARN-lite"));
}

void WindowFixture::removeSettings()
{
    QFile::remove(settingsPath());
    QFile::remove(SettingsLocation::inUserConfig());
}
