#include "ui/UiLanguage.h"

namespace UiLanguage {

namespace {
Lang g_current = Chinese; // zero-initialised until the entry sets it
}

Lang current() { return g_current; }

void set(Lang lang) { g_current = lang; }

bool isEnglish() { return g_current == English; }

Lang defaultForEdition() { return English; }

QString settingsKey() { return QStringLiteral("ui_language"); }

QString toSettingsValue(Lang lang) { return lang == English ? QStringLiteral("en") : QStringLiteral("zh"); }

Lang fromSettingsValue(const QString &value)
{
    // Exactly "en" (case-sensitive, no blanks) means English; anything else is Chinese.
    return value == QLatin1String("en") ? English : Chinese;
}

} // namespace UiLanguage
