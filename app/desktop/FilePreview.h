#pragma once
#include <atomic>
#include <memory>

#include <QImage>
#include <QString>
#include <QWidget>

namespace qirn {

/// The picture in a file, as a panel shows it beside the list. It is read in the background: of a document header and
/// preview only, of another picture all, where that is not large.
class FilePreview : public QWidget {
    Q_OBJECT
public:
    explicit FilePreview(QWidget* parent);
    ~FilePreview() override;

    void setFile(const QString& path);             ///< Empty for none.
    const QImage& image() const { return image_; } ///< Null until it is read, and where there is none.

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage image_;
    std::shared_ptr<std::atomic<bool>> wanted_; // what is being read; false from when it is not any more
};

} // namespace qirn
