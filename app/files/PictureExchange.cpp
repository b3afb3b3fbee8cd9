#include "app/files/PictureExchange.h"

#include "app/desktop/Failures.h"
#include "formats/ImageExport.h"
#include "formats/ImageImport.h"
#include "formats/pictures/tiff/TiffWriter.h"
#include "platform/Bytes.h"
#include "platform/QtImages.h"
#include "platform/files/FilePath.h"
#include "platform/files/ReadFile.h"

#include <chrono>

#include <QDeadlineTimer>
#include <QImage>
#include <QUrl>

namespace qirn {

namespace {

const QString kPng = QStringLiteral("image/png");
const QString kTiff = QStringLiteral("image/tiff");

/// Holds the pixels and encodes them when asked, so that a copy waits for no encoder and a paste in this program for no
/// decoder.
class CopiedPicture final : public QMimeData {
public:
    CopiedPicture(std::shared_ptr<const RGBABuffer> pixels, double dpi)
        : pixels_(std::move(pixels)),
          dpi_(dpi) {}

    const std::shared_ptr<const RGBABuffer>& pixels() const { return pixels_; }
    QStringList formats() const override { return {kPng, kTiff}; }
    bool hasFormat(const QString& type) const override { return formats().contains(type); }

protected:
    QVariant retrieveData(const QString& type, QMetaType) const override {
        QVariant data;
        contained([&] {
            if (type == kPng) {
                if (png_.isEmpty()) png_ = ImageExport::pngData(image(), dpi_).value_or(QByteArray());
                data = png_;
            }
            if (type == kTiff) {
                if (tiff_.isEmpty()) tiff_ = tiffBytes(*pixels_, dpi_).value_or(QByteArray());
                data = tiff_;
            }
        });
        return data;
    }

private:
    QImage image() const {
        return imageOver(pixels_->data(), static_cast<int>(pixels_->width()),
                         static_cast<int>(pixels_->height()));
    }

    std::shared_ptr<const RGBABuffer> pixels_;
    double dpi_;
    mutable QByteArray png_; // cached: clipboard managers ask repeatedly
    mutable QByteArray tiff_;
};

std::shared_ptr<const RGBABuffer> decoded(const QByteArray& bytes) {
    if (bytes.isEmpty()) return nullptr;
    try {
        const auto picture = ImageImport::decode(bytesOf(bytes));
        return picture ? picture->layer->toBuffer() : nullptr;
    } catch (const DescribedError&) {
        return nullptr; // a file without a picture of its layers
    }
}

std::shared_ptr<const RGBABuffer> decodedFile(const QString& path) {
    try {
        return decoded(readFile(path));
    } catch (const ReadError&) {
        return nullptr;
    }
}

bool isPictureType(const QString& type) {
    return type.startsWith(QStringLiteral("image/"));
}

/// Asks another program for one form after the other. Qt blocks for one to five seconds on each that does not come, and
/// then gives an empty one: after the first such answer nothing more is asked.
class Asked {
public:
    explicit Asked(const QMimeData& offer)
        : offer_(offer),
          formats_(inTime([&] { return offer.formats(); })) {}

    /// Something that was promised did not come.
    bool isLate() const { return isLate_; }
    bool offers(const QString& type) const { return formats_.contains(type); }

    std::shared_ptr<const RGBABuffer> pngOrTiff() {
        if (const auto* ours = dynamic_cast<const CopiedPicture*>(&offer_)) return ours->pixels();
        for (const QString& type : {kPng, kTiff}) {
            if (auto pixels = form(type)) return pixels;
        }
        return nullptr;
    }

    std::shared_ptr<const RGBABuffer> file() {
        if (!offers(QStringLiteral("text/uri-list"))) return nullptr;
        const auto paths = inTime([this] { return PictureExchange::files(offer_); });
        return paths.isEmpty() ? nullptr : decodedFile(paths.front());
    }

    /// Other programs offer BMP alone, or an image that the toolkit passes on.
    std::shared_ptr<const RGBABuffer> otherForm() {
        for (const QString& type : formats_) {
            if (!isPictureType(type) || type == kPng || type == kTiff) continue;
            if (auto pixels = form(type)) return pixels;
        }
        if (!offers(QStringLiteral("application/x-qt-image"))) return nullptr;
        return RGBABuffer::fromImage(inTime([this] { return qvariant_cast<QImage>(offer_.imageData()); }));
    }

private:
    std::shared_ptr<const RGBABuffer> form(const QString& type) {
        if (!offers(type)) return nullptr;
        const QByteArray bytes = inTime([&] { return offer_.data(type); });
        isLate_ |= bytes.isEmpty();
        return decoded(bytes);
    }

    /// The answer to `ask`; nothing, without asking, once an empty answer took too long.
    template <class Ask> auto inTime(Ask ask) -> decltype(ask()) {
        if (gaveUp_) return {};
        const QDeadlineTimer patience(std::chrono::milliseconds(500));
        auto answer = ask();
        gaveUp_ = patience.hasExpired() && answer == decltype(answer)();
        isLate_ |= gaveUp_;
        return answer;
    }

    const QMimeData& offer_;
    bool gaveUp_ = false;
    bool isLate_ = false;
    const QStringList formats_;
};

} // namespace

std::unique_ptr<QMimeData> PictureExchange::copied(std::shared_ptr<const RGBABuffer> buffer, double dpi) {
    return std::make_unique<CopiedPicture>(std::move(buffer), dpi);
}

QStringList PictureExchange::files(const QMimeData& offer) {
    QStringList paths;
    for (const QUrl& url : offer.urls())
        if (const auto path = pathOfAddress(url)) paths << *path;
    return paths;
}

PictureExchange::Taken PictureExchange::picture(const QMimeData& offer) {
    Asked asked(offer);
    auto pixels = asked.pngOrTiff();
    if (!pixels) pixels = asked.otherForm();
    return {pixels, !pixels && asked.isLate()};
}

PictureExchange::Taken PictureExchange::pictureOrFile(const QMimeData& offer) {
    Asked asked(offer);
    auto pixels = asked.pngOrTiff();
    if (!pixels) pixels = asked.file();
    if (!pixels) pixels = asked.otherForm();
    return {pixels, !pixels && asked.isLate()};
}

} // namespace qirn
