#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

class QJsonObject;
class QJsonValue;

// One processor variant as the configuration file describes it. Strings are kept exactly as
// written; a default-constructed record (returned for an unknown id) equals a variant that
// says nothing: empty texts and lists, every feature on.
struct VariantConfig {
    QString id;
    QString displayName;
    QString executable;
    QString workDir;
    QString defaultLut;
    QStringList extraArgs;
    QStringList omitArgs;
    QString keyFileArg;
    bool analysisOnly = true;
    bool disableAnalysis = true;
    bool disableCrop = true;
    bool outputBin = true;
};

// The processor configuration file "tarngui_lite.json": finds it, parses its variants and
// resolves the paths it holds against its own folder. Failures are reported through
// load()'s result and lastError(); unknown ids never fail.
class ProcessorConfig
{
public:
    static QString fileName();
    static QString locateConfigFile();

    bool load(const QString &path = QString());

    QStringList variantIds() const;
    QString displayName(const QString &id) const;
    bool setActiveVariant(const QString &id);
    VariantConfig variant(const QString &id) const;

    QString resolvePath(const QString &path) const;
    QString resolvedExecutable(const QString &id) const;
    QString resolvedWorkDir(const QString &id) const;
    QString resolvedDefaultLut(const QString &id) const;

    QString activeVariantId() const { return m_activeVariantId; }
    QString configPath() const { return m_configPath; }
    QString lastError() const { return m_lastError; }

private:
    bool fail(const QString &message);
    static VariantConfig parseVariant(const QString &id, const QJsonObject &object);

    QHash<QString, VariantConfig> m_variants;
    QString m_activeVariantId;
    QString m_configPath;
    QString m_lastError;
};

// The string values of a JSON array, in order; any other JSON value gives an empty list.
QStringList jsonToStringList(const QJsonValue &value);
