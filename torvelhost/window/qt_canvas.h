// The canvas of Qt's window: shows the pixels it was given, one for one of the screen, and a text beside the cursor.
#pragma once

#include <functional>
#include <QImage>
#include <QLabel>
#include <QWidget>

#include "torvelhost/window/view_frame.h"

namespace host {

class QtCanvas final : public QWidget {
  public:
    /// What the mouse did, for the frame to hand over.
    using Action = std::function<void(ViewEvents& events)>;

    explicit QtCanvas(std::function<void(const Action&)> handOver);

    void show(const PixelBuffer& picture);
    void setTip(const QString& text, CanvasPoint at);
    /// In pixels of the screen.
    QSize pixelSize() const;

    std::function<void()> onResized;
    std::function<void()> onPressed;

  private:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    CanvasPoint pixelAt(const QPointF& place) const;

    std::function<void(const Action&)> handOver_;
    QImage picture_;
    QLabel tip_;
};

}  // namespace host
