// modelyne-editor: starts the desktop editor, optionally on a model file.
#include <QApplication>
#include <QCommandLineParser>
#include <QLocale>
#include <QMessageBox>

#include "shell/autosave.h"
#include "shell/i18n/strings.h"
#include "shell/main_window.h"
#include "shell/settings.h"
#include "shell/themes.h"

int main(int argc, char** argv) {
  using namespace modelyne::shell;
  QApplication app(argc, argv);
  QApplication::setOrganizationName(QStringLiteral("Modelyne"));
  QApplication::setApplicationName(QStringLiteral("modelyne-editor"));
  QApplication::setApplicationVersion(QStringLiteral("0.1.0"));

  QCommandLineParser args;
  args.setApplicationDescription(QStringLiteral("Modelyne diagram editor"));
  args.addHelpOption();
  args.addVersionOption();
  args.addPositionalArgument(QStringLiteral("file"), QStringLiteral("Model file (.xml) to open."));
  args.process(app);

  const QString language = settings::language();
  i18n::setLanguage(language.isEmpty() ? i18n::languageForLocale(QLocale::system()) : language);
  applyTheme(app, settings::theme());

  MainWindow window;
  window.show();
  if (!args.positionalArguments().isEmpty()) {
    window.openFile(args.positionalArguments().constFirst());
  } else if (auto copy = AutosaveManager().untitledRecovery()) {
    // The last session ended with an unsaved, never-saved project.
    if (QMessageBox::question(&window, ui("ui.dlg.recover.title"), ui("ui.dlg.recover.untitled")) == QMessageBox::Yes)
      window.restoreUntitled(*copy);
  }
  return app.exec();
}
