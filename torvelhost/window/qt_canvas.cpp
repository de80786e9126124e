#include "torvelhost/window/qt_canvas.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <QWheelEvent>

namespace host {
namespace {

constexpr int kTipOffset = 18;

std::optional<MouseButton> buttonOf(const QMouseEvent& event) {
    switch (event.button()) {
        case Qt::LeftButton:
            return MouseButton::kLeft;
        case Qt::MiddleButton:
            return MouseButton::kMiddle;
        case Qt::RightButton:
            return MouseButton::kRight;
        default:
            return std::nullopt;
    }
}

bool isShift(const QInputEvent& event) { return event.modifiers().testFlag(Qt::ShiftModifier); }

}  // namespace

QtCanvas::QtCanvas(std::function<void(const Action&)> handOver) : handOver_(std::move(handOver)), tip_(this) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setContextMenuPolicy(Qt::NoContextMenu);
    setMinimumSize(200, 120);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    tip_.setAttribute(Qt::WA_TransparentForMouseEvents);
    tip_.setPalette(QToolTip::palette());
    tip_.setFont(QToolTip::font());
    tip_.setForegroundRole(QPalette::ToolTipText);
    tip_.setBackgroundRole(QPalette::ToolTipBase);
    tip_.setAutoFillBackground(true);
    tip_.setFrameStyle(QFrame::Box | QFrame::Plain);
    tip_.setTextFormat(Qt::PlainText);
    tip_.setMargin(2);
    tip_.hide();
}

// ---- what it shows

QSize QtCanvas::pixelSize() const {
    const auto pixels = [this](int length) {
        return std::max(1, static_cast<int>(std::lround(length * devicePixelRatioF())));
    };
    return {pixels(width()), pixels(height())};
}

void QtCanvas::show(const PixelBuffer& picture) {
    const QSize size(picture.width, picture.height);
    if (picture_.size() != size) picture_ = QImage(size, QImage::Format_RGB32);
    const auto width = static_cast<std::size_t>(picture.width);
    for (int y = 0; y < picture.height; ++y)
        std::memcpy(picture_.scanLine(y), picture.pixels.data() + static_cast<std::size_t>(y) * width,
                    width * sizeof(QRgb));
    update();
}

void QtCanvas::setTip(const QString& text, CanvasPoint at) {
    if (text.isEmpty()) return tip_.hide();
    tip_.setText(text);
    tip_.adjustSize();
    const double scale = devicePixelRatioF();
    const QPoint cursor(static_cast<int>(at.x / scale), static_cast<int>(at.y / scale));
    QPoint corner = cursor + QPoint(kTipOffset, kTipOffset);
    // On the other side of the cursor where there is no room.
    if (corner.x() + tip_.width() > width()) corner.setX(std::max(0, cursor.x() - kTipOffset - tip_.width()));
    if (corner.y() + tip_.height() > height()) corner.setY(std::max(0, cursor.y() - kTipOffset - tip_.height()));
    tip_.move(corner);
    tip_.show();
}

// Parts of the window that no picture has reached yet are empty paper.
void QtCanvas::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    picture_.setDevicePixelRatio(devicePixelRatioF());
    const QRectF area(QPointF(), picture_.deviceIndependentSize());
    if (!area.contains(event->rect())) painter.fillRect(event->rect(), Qt::white);
    painter.setClipRect(event->rect());
    painter.drawImage(QPointF(), picture_);
}

void QtCanvas::resizeEvent(QResizeEvent*) { onResized(); }

// ---- the mouse

CanvasPoint QtCanvas::pixelAt(const QPointF& place) const {
    const double scale = devicePixelRatioF();
    return {place.x() * scale, place.y() * scale};
}

void QtCanvas::mouseMoveEvent(QMouseEvent* event) {
    handOver_([at = pixelAt(event->position()), shift = isShift(*event)](ViewEvents& events) {
        events.mouseMoved(at, shift);
    });
}

void QtCanvas::mousePressEvent(QMouseEvent* event) {
    onPressed();
    if (const auto button = buttonOf(*event))
        handOver_([button, at = pixelAt(event->position()), shift = isShift(*event)](ViewEvents& events) {
            events.mousePressed(*button, at, shift);
        });
}

void QtCanvas::mouseReleaseEvent(QMouseEvent* event) {
    if (const auto button = buttonOf(*event))
        handOver_([button, at = pixelAt(event->position()), shift = isShift(*event)](ViewEvents& events) {
            events.mouseReleased(*button, at, shift);
        });
}

void QtCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    if (const auto button = buttonOf(*event))
        handOver_([button, at = pixelAt(event->position()), shift = isShift(*event)](ViewEvents& events) {
            events.mouseDoubleClicked(*button, at, shift);
        });
}

// Some systems turn the wheel sideways while a key is held.
void QtCanvas::wheelEvent(QWheelEvent* event) {
    constexpr double kNotch = 120;
    const QPoint angle = event->angleDelta();
    const double notches = (angle.y() != 0 ? angle.y() : angle.x()) / kNotch;
    if (notches != 0)
        handOver_([notches, at = pixelAt(event->position())](ViewEvents& events) { events.wheelTurned(notches, at); });
    event->accept();
}

void QtCanvas::leaveEvent(QEvent*) {
    handOver_([](ViewEvents& events) { events.mouseLeft(); });
}

}  // namespace host
