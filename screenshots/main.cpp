// Draws every state of every screen into PNG files, always the same: the moment, the time zone and
// the figures are fixed. Needs no display.

#include "screenshots/Scenes.h"
#include "ui/kit/FigureText.h"
#include "ui/kit/Motion.h"
#include "ui/kit/Theme.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFontDatabase>
#include <QTextStream>

namespace {

using vellmark::kit::Theme;

struct Settings {
    QString directory;
    QString only;
};

Settings parse(const QApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Draws every state of every screen."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("directory"),
                                 QStringLiteral("Where the files go."));
    parser.addPositionalArgument(QStringLiteral("name"),
                                 QStringLiteral("Only pictures whose name contains this."));
    const QCommandLineOption family(QStringLiteral("font"), QStringLiteral("Use this font family."),
                                    QStringLiteral("family"));
    parser.addOption(family);
    parser.process(application);
    if (parser.positionalArguments().isEmpty()) {
        parser.showHelp(1);
    }
    if (parser.isSet(family)) {
        QFont font = QApplication::font();
        font.setFamily(parser.value(family));
        QApplication::setFont(font);
    }
    return {parser.positionalArguments().at(0), parser.positionalArguments().value(1)};
}

bool drawAll(const Settings& settings) {
    for (const auto appearance : {Theme::Appearance::light, Theme::Appearance::dark}) {
        Theme::setCurrent(appearance);
        const char* look = appearance == Theme::Appearance::dark ? "dark" : "light";
        for (const vellmark::Scene& scene : vellmark::allScenes()) {
            const QString name = QString::fromStdString(scene.name);
            if (!name.contains(settings.only)) {
                continue;
            }
            for (const char* language : {"de", "en", "es", "fr", "it"}) {
                for (const int scale : {1, 2}) {
                    const QString file = QStringLiteral("%1/%2-%3-%4@%5x.png")
                                             .arg(settings.directory, name, QLatin1String(look),
                                                  QLatin1String(language))
                                             .arg(scale);
                    if (!scene.draw(language, scale).save(file)) {
                        QTextStream(stderr) << "cannot write " << file << '\n';
                        return false;
                    }
                }
            }
        }
    }
    return true;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const Settings settings = parse(application);
    vellmark::kit::motion::setReduced(true);
    if (!QDir().mkpath(settings.directory)) {
        QTextStream(stderr) << "cannot make " << settings.directory << '\n';
        return 1;
    }
    return drawAll(settings) ? 0 : 1;
}
