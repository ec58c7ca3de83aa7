#pragma once
/// User-visible strings of the editor, looked up by dotted keys
/// ("ui.log.saved", "common.ok", "ui.shape.type.10"). Each language has one
/// table, a data file "i18n/<code>.tsv" compiled in as a resource: one
/// "key<TAB>text" line each, with "\n", "\t" and "\\" escapes. A key missing
/// from the chosen language falls back to English, then to the key itself.
/// Texts use Qt's "%1".."%9" placeholders.

#include <QLocale>
#include <QString>
#include <QStringList>
#include <span>
#include <string_view>

namespace modelyne::shell::i18n {

/// One shipped language: its code (the table's file name) and its own name.
struct Language {
  const char* code;        ///< "en", "ja", "zh", "de", "fr", "ko", "es"
  const char* nativeName;  ///< shown in the language menu, in its own script
};

/// The shipped languages; English first (the fallback).
std::span<const Language> languages() noexcept;

/// The shipped language closest to the locale; English when none fits.
QString languageForLocale(const QLocale& locale);

/// Makes `code` the current language (unknown codes select English).
void setLanguage(const QString& code);
QString currentLanguage();

/// The text of `key` in the current language (fallbacks as above).
QString text(std::string_view key);

/// The keys of one language's table in file order (for completeness checks).
QStringList tableKeys(const QString& code);

}  // namespace modelyne::shell::i18n

namespace modelyne::shell {

/// Shorthand used everywhere in the shell: ui("ui.menu.file"). (Not `tr`,
/// which QObject::tr would hide inside every widget class.)
inline QString ui(std::string_view key) { return i18n::text(key); }

}  // namespace modelyne::shell
