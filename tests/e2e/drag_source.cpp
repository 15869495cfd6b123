// A window to drag from. Its arguments are a MIME type and what is dragged, in that type. Says on
// stdout, a line each: "ready" once it can be dragged from; "accepts" or "refuses" at each answer
// of the window under the pointer; "copied", "moved" or "dropped nowhere" at the end of a drag.

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <xcb/xcb.h>

namespace {

void say(const char* line) {
    std::puts(line);
    std::fflush(stdout);
}

/// Reports the answers of drop targets; Qt itself keeps a refusal to itself.
class Answers final : public QAbstractNativeEventFilter {
  public:
    Answers() {
        auto* connection =
            qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
        constexpr char name[] = "XdndStatus";
        auto* reply = xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, sizeof name - 1, name), nullptr);
        _status = reply->atom;
        std::free(reply);
    }

    bool nativeEventFilter(const QByteArray&, void* message, qintptr*) override {
        const auto* event = static_cast<const xcb_client_message_event_t*>(message);
        if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE && event->type == _status)
            say((event->data.data32[1] & 1) != 0 ? "accepts" : "refuses");
        return false;
    }

  private:
    xcb_atom_t _status = 0;
};

class Source final : public QWidget {
  public:
    Source(QString type, QByteArray contents)
        : _type(std::move(type)), _contents(std::move(contents)) {
        setFixedSize(160, 80);
        setWindowTitle("Drag from here");
    }

  protected:
    void mousePressEvent(QMouseEvent*) override {
        auto* dragged = new QMimeData;
        dragged->setData(_type, _contents);
        auto* drag = new QDrag(this);
        drag->setMimeData(dragged);
        switch (drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction)) {
        case Qt::CopyAction:
            return say("copied");
        case Qt::MoveAction:
            return say("moved");
        default:
            return say("dropped nowhere");
        }
    }

    void paintEvent(QPaintEvent*) override {
        if (!std::exchange(_isReady, true))
            say("ready");
    }

  private:
    QString _type;
    QByteArray _contents;
    bool _isReady = false;
};

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc != 3)
        return EXIT_FAILURE;
    Answers answers;
    application.installNativeEventFilter(&answers);
    Source source(argv[1], argv[2]);
    source.show();
    return QApplication::exec();
}
