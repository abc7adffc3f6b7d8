// window_layout.h - how the main window shares out its room: the canvas takes what is added, the controls
// keep their size and order below it.
#pragma once
#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <QWidget>

#include <vector>

class ORVBrowser;

class WindowLayout : public QObject {
public:
    static constexpr QSize smallest{620, 560};    // of the window, in pixels

    // For what the window holds by now.
    explicit WindowLayout(ORVBrowser& window);

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    enum class room { canvas, below, wide_below };

    struct placed {
        QPointer<QWidget> widget;
        QRect at;    // in a window of the first size
        room share;
    };

    void place();

    ORVBrowser& _window;
    const QSize _first_size;
    std::vector<placed> _placed;
};
