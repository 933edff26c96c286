// Cutting a picture out of a skin, beside copying its pixels by hand and beside the toolkit's own way.
#include "res/share/pixelrow.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <UTIL_ShareImage>
#include <UTIL_SkinFileReader>
#include <UTIL_SkinFileWriter>
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <vector>

namespace {

constexpr QRect kPicture(67, 33, 64, 64); // no whole bytes of the mask

double microseconds(const auto &action)
{
    constexpr int kBatch = 500;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < kBatch; ++i)
        action();
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count() / kBatch;
}

// Medians of rounds in which all take turns: a busy moment of the machine hits each of them.
template <typename... Actions> std::array<double, sizeof...(Actions)> medians(const Actions &...actions)
{
    constexpr int kRounds = 101;
    std::array<std::vector<double>, sizeof...(Actions)> times;
    for (int round = 0; round < kRounds; ++round) {
        std::size_t i = 0;
        (times[i++].push_back(microseconds(actions)), ...);
    }
    std::array<double, sizeof...(Actions)> result;
    std::transform(times.begin(), times.end(), result.begin(), [](std::vector<double> &all) {
        std::nth_element(all.begin(), all.begin() + kRounds / 2, all.end());
        return all[kRounds / 2];
    });
    return result;
}

bool makeSkin()
{
    QImage atlas(256, 256, QImage::Format_ARGB32_Premultiplied);
    atlas.fill(Qt::transparent);
    QPainter painter(&atlas);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::blue);
    painter.drawEllipse(kPicture.adjusted(2, 2, -2, -2));
    painter.end();
    if (!atlas.save(QStringLiteral("/tmp/atlas.png")))
        return false;
    UTIL_SkinFileWriter writer(QStringLiteral("/tmp/bench.skn"), QStringLiteral("/tmp/atlas.png"));
    writer.add(QStringLiteral("icon.g"), kPicture);
    return writer.save();
}

// Rows and mask, pixel by pixel.
QPixmap byHand(const QImage &atlas, const QImage &mask)
{
    QImage result(kPicture.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < kPicture.height(); ++y) {
        auto *target = res::pixelRow(result, y);
        const auto *source = res::pixelRow(atlas, kPicture.y() + y) + kPicture.x();
        const uchar *bits = mask.constScanLine(kPicture.y() + y);
        for (int x = 0; x < kPicture.width(); ++x) {
            const int column = kPicture.x() + x;
            target[x] = bits[column / 8] >> (column % 8) & 1 ? source[x] : 0;
        }
    }
    return QPixmap::fromImage(std::move(result), Qt::NoFormatConversion);
}

QPixmap byToolkit(const QPixmap &atlas, const QBitmap &mask)
{
    QPixmap result = atlas.copy(kPicture);
    result.setMask(QBitmap::fromPixmap(mask.copy(kPicture)));
    return result;
}

}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    if (!makeSkin())
        return 1;
    UTIL_SkinFileReader skin;
    QPixmap atlas;
    QBitmap mask;
    if (!skin.setFileName(QStringLiteral("/tmp/bench.skn")) || !UTIL_SkinFileReader::pSkinImage->getImage(atlas)
        || !UTIL_SkinFileReader::pSkinImage->getMask(mask))
        return 1;
    const QImage rows = atlas.toImage();
    const QImage bits = mask.toImage();
    const QString name = QStringLiteral("icon");
    if (skin.getPixmap(name).toImage() != byHand(rows, bits).toImage())
        return 1;
    const auto [ours, lock, hand, toolkit] = medians([&] { std::ignore = skin.getPixmap(name); },
        [] {
            UTIL_SkinFileReader::pSkinImage->lock();
            UTIL_SkinFileReader::pSkinImage->unlock();
        },
        [&] { std::ignore = byHand(rows, bits); }, [&] { std::ignore = byToolkit(atlas, mask); });
    std::printf("a picture of 64 x 64 with its mask, microseconds\n");
    std::printf("  getPixmap              %6.2f\n", ours);
    std::printf("  of that the lock       %6.2f\n", lock);
    std::printf("  copied by hand         %6.2f   getPixmap without the lock takes %.2f times as long\n", hand,
        (ours - lock) / hand);
    std::printf(
        "  copied by the toolkit  %6.2f   which takes %.1f times as long as getPixmap\n", toolkit, toolkit / ours);
    return 0;
}
