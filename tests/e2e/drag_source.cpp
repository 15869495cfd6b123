// A window to drag the folder from that is its argument. Says on stdout, a line each: "ready" once
// it can be dragged from, "accepted" when the window under the pointer would take it, "copied" when
// it has.

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>
#include <cstdio>

namespace {

void say(const char* line) {
    std::puts(line);
    std::fflush(stdout);
}

class Source final : public QWidget {
  public:
    explicit Source(const char* folder) : _folder(QUrl::fromLocalFile(folder)) {
        setFixedSize(160, 80);
        setWindowTitle("Drag from here");
    }

  protected:
    void mousePressEvent(QMouseEvent*) override {
        auto* dragged = new QMimeData;
        dragged->setUrls({_folder});
        auto* drag = new QDrag(this);
        drag->setMimeData(dragged);
        QObject::connect(drag, &QDrag::actionChanged, [](Qt::DropAction action) {
            if (action == Qt::CopyAction)
                say("accepted");
        });
        if (drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction) == Qt::CopyAction)
            say("copied");
    }

    void paintEvent(QPaintEvent*) override {
        if (!std::exchange(_isReady, true))
            say("ready");
    }

  private:
    const QUrl _folder;
    bool _isReady = false;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Source source(argv[1]);
    source.show();
    return QApplication::exec();
}
