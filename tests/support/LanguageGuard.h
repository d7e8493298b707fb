#pragma once

#include "ui/UiLanguage.h"

// Sets the UI language for a scope and restores the previous one afterwards.
struct LanguageGuard {
    explicit LanguageGuard(UiLanguage::Lang lang)
        : previous(UiLanguage::current())
    {
        UiLanguage::set(lang);
    }
    ~LanguageGuard() { UiLanguage::set(previous); }
    LanguageGuard(const LanguageGuard &) = delete;
    LanguageGuard &operator=(const LanguageGuard &) = delete;

    UiLanguage::Lang previous;
};
