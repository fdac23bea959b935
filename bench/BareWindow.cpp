// The peer of the desktop application's figures: a Qt program with one empty window and nothing
// else. Given the second of its launch, prints the milliseconds until its first painting and its
// resident memory in megabytes, and ends.

#include <QApplication>
#include <QPainter>
#include <QWidget>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <unistd.h>

namespace {

double residentMegabytes() {
    std::ifstream file("/proc/self/statm");
    long pages = 0;
    long residentPages = 0;
    file >> pages >> residentPages;
    return static_cast<double>(residentPages) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

class BareWindow final : public QWidget {
public:
    explicit BareWindow(double launchedAt) : launchedAt_(launchedAt) { resize(960, 640); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(rect(), Qt::white);
        const std::chrono::duration<double> now =
            std::chrono::system_clock::now().time_since_epoch();
        std::printf("%.1f %.1f\n", (now.count() - launchedAt_) * 1000, residentMegabytes());
        QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
    }

private:
    double launchedAt_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: vellmark-bare-window SECONDS-SINCE-1970\n", stderr);
        return 2;
    }
    const QApplication application(argc, argv);
    BareWindow window(std::strtod(argv[1], nullptr));
    window.show();
    return QApplication::exec();
}
