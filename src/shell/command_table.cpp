#include "shell/command_table.h"

#include <QAction>
#include <QRegularExpression>

namespace modelyne::shell {

QString withoutMnemonic(const QString& text) {
  // "(&O)" after a CJK text goes as a whole; elsewhere the "&" alone.
  static const QRegularExpression bracketed(QStringLiteral("\\(&[^&]\\)"));
  QString in = text;
  in.remove(bracketed);
  QString out;
  out.reserve(in.size());
  for (qsizetype i = 0; i < in.size(); ++i) {
    if (in[i] != QLatin1Char('&')) {
      out += in[i];
    } else if (i + 1 < in.size() && in[i + 1] == QLatin1Char('&')) {
      out += QLatin1Char('&');
      ++i;
    }
  }
  return out;
}

QString shortcutText(const QAction* action) {
  QStringList keys;
  for (const QKeySequence& k : action->shortcuts()) keys << k.toString(QKeySequence::NativeText);
  return keys.join(QStringLiteral(", "));
}

}  // namespace modelyne::shell
