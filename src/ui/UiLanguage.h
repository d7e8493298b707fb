#pragma once

#include <QString>

// The one process-wide UI language. Every catalogue entry (Str) reads it at the moment it
// is called; nothing else keeps language state.
namespace UiLanguage {

// A fixed underlying type: a value read from elsewhere that is neither is still a valid Lang.
enum Lang : int { Chinese = 0, English = 1 };

Lang current();
void set(Lang lang);
bool isEnglish();

// The language this edition starts in.
Lang defaultForEdition();

// Settings key and values for an edition that persists the language.
QString settingsKey();
QString toSettingsValue(Lang lang);
Lang fromSettingsValue(const QString &value);

} // namespace UiLanguage
