#include "app/SupportReportWindowController.h"

#include "report/MailDirectory.h"
#include "ui/Conversions.h"
#include "ui/report/SupportReportView.h"

#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QGuiApplication>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

namespace vellmark {

namespace {

void showInFolder(const std::filesystem::path& file) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(qString(file.parent_path().string())));
}

} // namespace

SupportReportWindowController::SupportReportWindowController(Sources sources)
    : sources_(std::move(sources)), model_(modelSources()),
      window_(
          {.identifier = "report",
           .autosaveName = {},
           .make = [this] { return makeView(); },
           .title =
               [this] { return qString(sources_.language.words().text("report.window.title")); },
           .onVisibilityChange = [this] { visibilityChanged(); }},
          sources_.presence, sources_.preferences) {
    threads_.run(
        [temporary = sources_.machine.temporary] { MailDirectory::removeLeftBehind(temporary); });
}

SupportReportWindowController::~SupportReportWindowController() {
    model_.cancel();
}

SupportReportModel::Sources SupportReportWindowController::modelSources() {
    return {
        .store = sources_.store,
        .machine = sources_.machine,
        .executor = sources_.executor,
        .words = [this]() -> const Localization& { return sources_.language.words(); },
        .inBackground = [this](std::function<void()> work) { threads_.run(std::move(work)); },
        .changed = [this] { update(); },
        .askWhereTo = [this](const std::string& name) { return askWhereTo(name); },
        .copy =
            [](const std::string& text) { QGuiApplication::clipboard()->setText(qString(text)); },
        .composeMail =
            [this](MailDraft draft, MailComposer::Done done) {
                if (!composer_) {
                    composer_ = makeMailComposer(sources_.machine.environment);
                }
                composer_->compose(std::move(draft), std::move(done));
            },
        .showFile = showInFolder};
}

std::unique_ptr<QWidget> SupportReportWindowController::makeView() {
    auto view = std::make_unique<SupportReportView>(SupportReportView::Actions{
        .type = [this](const std::string& words) { model_.setWhatHappened(words); },
        .setIncludeEmails = [this](bool include) { model_.setIncludeEmails(include); },
        .lookFor = [this](const std::string& query) { model_.lookFor(query); },
        .goToMatch = [this](int step) { model_.goToMatch(step); },
        .copy = [this] { model_.copy(); },
        .save = [this] { model_.save(); },
        .mail = [this] { model_.mail(); },
        .showFile = [this] { model_.showFile(); }});
    view_ = view.get();
    sources_.attachMenu(*view);
    update();
    return view;
}

void SupportReportWindowController::show() {
    const bool isShown = window_.isVisible();
    window_.show();
    if (!isShown) {
        model_.build();
    }
}

void SupportReportWindowController::visibilityChanged() {
    if (!window_.isVisible()) {
        model_.rest();
    }
}

void SupportReportWindowController::retell() {
    window_.retitle();
    if (window_.isVisible()) {
        // No word of the former language stays while the facts are gathered.
        model_.rest();
        model_.build();
    }
    update();
}

void SupportReportWindowController::update() {
    if (view_) {
        const Localization& words = sources_.language.words();
        view_->setMenuWords(qString(words.text("menu.copy")),
                            qString(words.text("menu.selectAll")));
        view_->setContent(model_.content());
    }
}

std::optional<std::filesystem::path>
SupportReportWindowController::askWhereTo(const std::string& name) const {
    const Localization& words = sources_.language.words();
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString path =
        QFileDialog::getSaveFileName(window_.window(), {}, documents + '/' + qString(name),
                                     qString(words.text("report.fileKind")) + " (*.txt)");
    return path.isEmpty() ? std::nullopt : std::optional(std::filesystem::path(path.toStdString()));
}

} // namespace vellmark
