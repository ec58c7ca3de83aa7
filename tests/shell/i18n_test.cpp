// The string tables: every language has every key of English, placeholders
// agree, and every key the editor's code asks for exists.
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include "shell/i18n/strings.h"
#include "shell_test_support.h"

using namespace modelyne::shell;

namespace {

QSet<QString> placeholders(const QString& text) {
  static const QRegularExpression re(QStringLiteral("%[1-9]"));
  QSet<QString> out;
  for (auto it = re.globalMatch(text); it.hasNext();) out.insert(it.next().captured());
  return out;
}

}  // namespace

TEST(ShellStrings, EveryTableHasEveryKeyWithTheSamePlaceholders) {
  shelltest::app();
  const QStringList english = i18n::tableKeys(QStringLiteral("en"));
  ASSERT_GT(english.size(), 300);
  for (const i18n::Language& lang : i18n::languages()) {
    const QString code = QLatin1String(lang.code);
    const QStringList keys = i18n::tableKeys(code);
    const QSet<QString> have(keys.begin(), keys.end());
    for (const QString& k : english) {
      EXPECT_TRUE(have.contains(k)) << code.toStdString() << " lacks " << k.toStdString();
      i18n::setLanguage(QStringLiteral("en"));
      const QString en = i18n::text(k.toStdString());
      i18n::setLanguage(code);
      EXPECT_EQ(placeholders(i18n::text(k.toStdString())), placeholders(en)) << code.toStdString() << " " << k.toStdString();
    }
    EXPECT_EQ(keys.size(), english.size()) << code.toStdString() << " has keys English lacks";
  }
  i18n::setLanguage(QStringLiteral("en"));
}

TEST(ShellStrings, MissingKeysFallBackToEnglishThenToTheKey) {
  i18n::setLanguage(QStringLiteral("fr"));
  EXPECT_EQ(i18n::currentLanguage(), QStringLiteral("fr"));
  EXPECT_EQ(ui("ui.no.such.key"), QStringLiteral("ui.no.such.key"));
  i18n::setLanguage(QStringLiteral("xx"));
  EXPECT_EQ(i18n::currentLanguage(), QStringLiteral("en"));
  EXPECT_EQ(ui("ui.shape.type.0"), QStringLiteral("Rectangle"));
  EXPECT_EQ(ui("ui.diagkind.mm"), QStringLiteral("Mind Map Diagram"));
  EXPECT_EQ(i18n::languageForLocale(QLocale(QStringLiteral("ja_JP"))), QStringLiteral("ja"));
  EXPECT_EQ(i18n::languageForLocale(QLocale(QStringLiteral("pt_BR"))), QStringLiteral("en"));
}

// Every literal key passed to ui(...) in the editor's sources is in the English table.
TEST(ShellStrings, EveryKeyUsedInTheCodeExists) {
  const QStringList english = i18n::tableKeys(QStringLiteral("en"));
  const QSet<QString> have(english.begin(), english.end());
  static const QRegularExpression call(QStringLiteral("\\bui\\(\"([a-z][A-Za-z0-9_.]*)\"\\)"));
  int found = 0;
  QDirIterator it(QStringLiteral(MODELYNE_SOURCE_DIR "/src/shell"), {QStringLiteral("*.cpp")}, QDir::Files,
                  QDirIterator::Subdirectories);
  while (it.hasNext()) {
    QFile f(it.next());
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(f.readAll());
    for (auto m = call.globalMatch(text); m.hasNext();) {
      const QString key = m.next().captured(1);
      ++found;
      EXPECT_TRUE(have.contains(key)) << key.toStdString() << " used in " << f.fileName().toStdString();
    }
  }
  EXPECT_GT(found, 100);
}
