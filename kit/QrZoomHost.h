#pragma once
#include <QScrollArea>
#include <QSize>

namespace qirn {

/// The whole content of a window, laid out at the zoom of the interface and never smaller than its least size at that
/// zoom, nor than its layout needs: where the window is smaller, the content scrolls and is not cut.
class QrZoomHost : public QScrollArea {
    Q_OBJECT
public:
    /// The least size is that of the content at zoom 1. It takes the content over.
    explicit QrZoomHost(QWidget* content, QSize minSize = kMinSize);

    static constexpr QSize kMinSize{960, 640};
    void setMinSize(QSize minSize); ///< None at all where it is nothing, whatever the layout needs.

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override; ///< Arrow keys do not scroll: they are for the content.

private:
    void scrollHome(); ///< To the content's top left corner, once it is laid out.

    QSize minSize_;   // of the content at zoom 1
    double zoom_ = 0; // that it was laid out at last
};

} // namespace qirn
