#include "shell/i18n/strings.h"

#include <QFile>
#include <QHash>
#include <array>
#include <mutex>

namespace modelyne::shell::i18n {
namespace {

constexpr std::array<Language, 7> kLanguages{{
    {"en", "English"},
    {"ja", "日本語"},
    {"zh", "中文"},
    {"de", "Deutsch"},
    {"fr", "Français"},
    {"ko", "한국어"},
    {"es", "Español"},
}};

using Table = QHash<QByteArray, QString>;

// ---- table files ----

QString unescape(QByteArrayView raw) {
  QByteArray out;
  out.reserve(raw.size());
  for (qsizetype i = 0; i < raw.size(); ++i) {
    const char c = raw[i];
    if (c == '\\' && i + 1 < raw.size()) {
      const char n = raw[++i];
      out.append(n == 'n' ? '\n' : n == 't' ? '\t' : n == 'r' ? '\r' : n);
    } else {
      out.append(c);
    }
  }
  return QString::fromUtf8(out);
}

/// Reads "key<TAB>text" lines; blank lines and lines starting with '#' are comments.
std::pair<Table, QStringList> readTable(const QString& code) {
  Table table;
  QStringList order;
  QFile file(QStringLiteral(":/i18n/%1.tsv").arg(code));
  if (!file.open(QIODevice::ReadOnly)) return {table, order};
  const QByteArray all = file.readAll();
  for (QByteArray line : all.split('\n')) {
    if (line.endsWith('\r')) line.chop(1);
    if (line.isEmpty() || line.startsWith('#')) continue;
    const qsizetype tab = line.indexOf('\t');
    if (tab <= 0) continue;
    const QByteArray key = line.first(tab);
    if (!table.contains(key)) order.append(QString::fromUtf8(key));
    table.insert(key, unescape(line.sliced(tab + 1)));
  }
  return {table, order};
}

struct State {
  std::mutex mutex;
  QHash<QString, Table> tables;  // loaded on first use
  QString current = QStringLiteral("en");

  const Table& table(const QString& code) {
    auto it = tables.find(code);
    if (it == tables.end()) it = tables.insert(code, readTable(code).first);
    return *it;
  }
};

State& state() {
  static State s;
  return s;
}

bool isShipped(const QString& code) {
  for (const Language& l : kLanguages)
    if (code == QLatin1String(l.code)) return true;
  return false;
}

}  // namespace

std::span<const Language> languages() noexcept { return kLanguages; }

QString languageForLocale(const QLocale& locale) {
  const QString name = locale.name();  // "ja_JP", "zh_CN", "C"
  const QString code = name.section(QLatin1Char('_'), 0, 0);
  return isShipped(code) ? code : QStringLiteral("en");
}

void setLanguage(const QString& code) {
  std::lock_guard lock(state().mutex);
  state().current = isShipped(code) ? code : QStringLiteral("en");
}

QString currentLanguage() {
  std::lock_guard lock(state().mutex);
  return state().current;
}

QString text(std::string_view key) {
  State& s = state();
  std::lock_guard lock(s.mutex);
  const QByteArray k(key.data(), static_cast<qsizetype>(key.size()));
  const Table& cur = s.table(s.current);
  if (auto it = cur.find(k); it != cur.end()) return *it;
  const Table& en = s.table(QStringLiteral("en"));
  if (auto it = en.find(k); it != en.end()) return *it;
  return QString::fromUtf8(k);
}

QStringList tableKeys(const QString& code) { return readTable(code).second; }

}  // namespace modelyne::shell::i18n
