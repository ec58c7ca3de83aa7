#include "shell/text_guard.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextCursor>
#include <QValidator>

namespace modelyne::shell {
namespace {

bool unwanted(QChar c) {
  return c.category() == QChar::Other_Control && c != QLatin1Char('\n') && c != QLatin1Char('\t');
}

/// A line edit's validator may change what is being entered: it drops the
/// characters and moves the cursor back by as many as went before it.
class ControlCharacterFilter final : public QValidator {
 public:
  using QValidator::QValidator;
  State validate(QString& input, int& pos) const override {
    if (!hasControlCharacters(input)) return Acceptable;
    QString out;
    out.reserve(input.size());
    int newPos = pos;
    for (int i = 0; i < input.size(); ++i) {
      if (unwanted(input[i])) {
        if (i < pos) --newPos;
      } else {
        out += input[i];
      }
    }
    input = out;
    pos = newPos;
    return Acceptable;
  }
};

}  // namespace

bool hasControlCharacters(const QString& text) {
  for (QChar c : text)
    if (unwanted(c)) return true;
  return false;
}

QString withoutControlCharacters(const QString& text) {
  if (!hasControlCharacters(text)) return text;
  QString out;
  out.reserve(text.size());
  for (QChar c : text)
    if (!unwanted(c)) out += c;
  return out;
}

void keepControlCharactersOut(QLineEdit* field) {
  field->setValidator(new ControlCharacterFilter(field));
  // A corrected input is set anew, which clears the modified flag: it is
  // still the user's input, waiting to be committed.
  QObject::connect(field, &QLineEdit::textEdited, field, [field] { field->setModified(true); });
}

void keepControlCharactersOut(QPlainTextEdit* field) {
  // A text document has no validator: take out what arrived, in the same
  // undo step as the insertion.
  QObject::connect(field->document(), &QTextDocument::contentsChange, field,
                   [field](int position, int, int added) {
                     if (added <= 0) return;
                     QTextDocument* doc = field->document();
                     const bool wasModified = doc->isModified();
                     for (int i = position + added - 1; i >= position; --i) {
                       if (!unwanted(doc->characterAt(i))) continue;
                       QTextCursor cursor(doc);
                       cursor.setPosition(i);
                       cursor.setPosition(i + 1, QTextCursor::KeepAnchor);
                       cursor.joinPreviousEditBlock();
                       cursor.removeSelectedText();
                       cursor.endEditBlock();
                     }
                     doc->setModified(wasModified || doc->isModified());
                   });
}

}  // namespace modelyne::shell
