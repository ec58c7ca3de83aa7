#pragma once
/// Keeps control characters out of labels and properties: the model file
/// and the SVG are XML 1.0, which cannot hold them. Line feed and tab stay;
/// every other character of Unicode's control category (U+0000-U+001F,
/// U+007F-U+009F) goes as soon as it arrives, typed, pasted or dropped, and
/// again when the text is committed.

#include <QString>

class QLineEdit;
class QPlainTextEdit;

namespace modelyne::shell {

/// `text` without control characters other than line feed and tab.
QString withoutControlCharacters(const QString& text);
bool hasControlCharacters(const QString& text);

/// From now on the field drops control characters as they come in.
void keepControlCharactersOut(QLineEdit* field);
void keepControlCharactersOut(QPlainTextEdit* field);

}  // namespace modelyne::shell
