#include "processor/ProcessorConfig.h"

#include "ui/AppStrings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>

namespace {
QString cleanAbsolute(const QString &path) { return QDir::cleanPath(QFileInfo(path).absoluteFilePath()); }
} // namespace

QStringList jsonToStringList(const QJsonValue &value)
{
    QStringList list;
    if (!value.isArray())
        return list;
    const QJsonArray array = value.toArray();
    list.reserve(array.size());
    for (const QJsonValue &element : array)
        list << element.toString();
    return list;
}

QString ProcessorConfig::fileName() { return QStringLiteral("tarngui_lite.json"); }

QString ProcessorConfig::locateConfigFile()
{
    const QString appDir = QCoreApplication::applicationDirPath();
    const QStringList candidates = {
        QDir(appDir).filePath(fileName()),
        QDir(appDir).filePath(QStringLiteral("../") + fileName()),
        QDir(appDir).filePath(QStringLiteral("../../") + fileName()),
        QDir(appDir).filePath(QStringLiteral("../configs/") + fileName()),
        QDir::current().filePath(fileName()),
    };
    for (const QString &candidate : candidates) {
        if (QFileInfo::exists(candidate))
            return cleanAbsolute(candidate);
    }
    return QString();
}

bool ProcessorConfig::fail(const QString &message)
{
    m_lastError = message;
    return false;
}

bool ProcessorConfig::load(const QString &path)
{
    m_variants.clear();
    m_activeVariantId.clear();
    m_configPath.clear();
    m_lastError.clear();

    const QString filePath = path.isEmpty() ? locateConfigFile() : path;
    if (filePath.isEmpty())
        return fail(Str::configFileNotFound(fileName()));

    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly))
        return fail(Str::configFileUnreadable(filePath));

    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (parseError.error != QJsonParseError::NoError)
        return fail(Str::configJsonParseFailed(parseError.errorString()));
    if (!document.isObject())
        return fail(Str::configJsonParseFailed(QStringLiteral("root is not an object")));

    m_configPath = cleanAbsolute(filePath);

    const QJsonObject root = document.object();
    const QJsonValue variantsValue = root.value(QStringLiteral("variants"));
    if (!variantsValue.isObject() || variantsValue.toObject().isEmpty())
        return fail(Str::configMissingVariants());

    const QJsonObject variants = variantsValue.toObject();
    for (auto it = variants.begin(); it != variants.end(); ++it) {
        if (!it.value().isObject())
            continue;
        const VariantConfig variant = parseVariant(it.key(), it.value().toObject());
        if (variant.executable.isEmpty()) {
            m_variants.clear();
            return fail(Str::configVariantMissingExecutable(it.key()));
        }
        m_variants.insert(variant.id, variant);
    }
    if (m_variants.isEmpty())
        return fail(Str::configMissingVariants());

    const QString requested = root.value(QStringLiteral("active_variant")).toString();
    m_activeVariantId = m_variants.contains(requested) ? requested : m_variants.constBegin().key();
    return true;
}

VariantConfig ProcessorConfig::parseVariant(const QString &id, const QJsonObject &object)
{
    VariantConfig variant;
    variant.id = id;
    variant.displayName = object.value(QStringLiteral("display_name")).toString(id);
    variant.executable = object.value(QStringLiteral("executable")).toString();
    variant.workDir = object.value(QStringLiteral("work_dir")).toString();
    variant.defaultLut = object.value(QStringLiteral("default_lut")).toString();
    variant.extraArgs = jsonToStringList(object.value(QStringLiteral("extra_args")));
    variant.omitArgs = jsonToStringList(object.value(QStringLiteral("omit_args")));
    variant.keyFileArg = object.value(QStringLiteral("key_file_arg")).toString();

    const QJsonObject features = object.value(QStringLiteral("features")).toObject();
    variant.analysisOnly = features.value(QStringLiteral("analysis_only")).toBool(true);
    variant.disableAnalysis = features.value(QStringLiteral("disable_analysis")).toBool(true);
    variant.disableCrop = features.value(QStringLiteral("disable_crop")).toBool(true);
    variant.outputBin = features.value(QStringLiteral("output_bin")).toBool(true);
    return variant;
}

QStringList ProcessorConfig::variantIds() const { return m_variants.keys(); }

QString ProcessorConfig::displayName(const QString &id) const
{
    const auto it = m_variants.constFind(id);
    if (it == m_variants.constEnd() || it->displayName.isEmpty())
        return id;
    return it->displayName;
}

bool ProcessorConfig::setActiveVariant(const QString &id)
{
    if (!m_variants.contains(id))
        return false;
    m_activeVariantId = id;
    return true;
}

VariantConfig ProcessorConfig::variant(const QString &id) const { return m_variants.value(id); }

QString ProcessorConfig::resolvePath(const QString &path) const
{
    if (path.isEmpty())
        return QString();
    if (QDir::isRelativePath(path))
        return QDir::cleanPath(QFileInfo(m_configPath).absoluteDir().filePath(path));
    return cleanAbsolute(path);
}

QString ProcessorConfig::resolvedExecutable(const QString &id) const
{
    const auto it = m_variants.constFind(id);
    return it == m_variants.constEnd() ? QString() : resolvePath(it->executable);
}

QString ProcessorConfig::resolvedWorkDir(const QString &id) const
{
    const auto it = m_variants.constFind(id);
    if (it == m_variants.constEnd())
        return QString();
    if (!it->workDir.isEmpty())
        return resolvePath(it->workDir);
    const QString executable = resolvedExecutable(id);
    return executable.isEmpty() ? QString() : QFileInfo(executable).absolutePath();
}

QString ProcessorConfig::resolvedDefaultLut(const QString &id) const
{
    const QString lut = variant(id).defaultLut;
    if (lut.isEmpty())
        return QString();
    if (!QDir::isRelativePath(lut))
        return cleanAbsolute(lut);
    const QString workDir = resolvedWorkDir(id);
    if (workDir.isEmpty())
        return QDir::cleanPath(lut);
    return QDir::cleanPath(QDir(workDir).filePath(lut));
}
