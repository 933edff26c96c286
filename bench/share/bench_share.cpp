// A shared image beside an image that every process decodes: times, and the memory of many processes.
#include <QBitmap>
#include <QBuffer>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <UTIL_ShareImage>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kSide = 1024;
constexpr int kRounds = 31;

const QString kName = QStringLiteral("bench");

// Like a skin: buttons and icons with gradients and soft edges, on nothing.
QByteArray atlas()
{
    QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    constexpr int kCell = 64;
    for (int y = 0; y < kSide; y += kCell) {
        for (int x = 0; x < kSide; x += kCell) {
            QLinearGradient gradient(x, y, x + kCell, y + kCell);
            gradient.setColorAt(0, QColor::fromHsv((x + y) * 359 / (2 * kSide), 200, 255));
            gradient.setColorAt(1, QColor::fromHsv((2 * x + y) % 360, 120, 90, 200));
            painter.setBrush(gradient);
            painter.drawRoundedRect(QRectF(x + 1, y + 1, kCell - 2, kCell - 2), 9, 9);
        }
    }
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!image.save(&buffer, "PNG"))
        std::abort();
    return bytes;
}

double medianMicroseconds(const std::function<void()> &action)
{
    using Clock = std::chrono::steady_clock;
    std::vector<double> rounds;
    for (int i = 0; i < kRounds; ++i) {
        const auto start = Clock::now();
        action();
        rounds.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    std::nth_element(rounds.begin(), rounds.begin() + kRounds / 2, rounds.end());
    return rounds[kRounds / 2];
}

// What a process has of an atlas; it draws all of it once, as applications do bit by bit.
struct Atlas {
    QPixmap image;
    QBitmap mask;

    static Atlas shared()
    {
        Atlas atlas;
        UTIL_ShareImage image(kName);
        if (!image.getImage(atlas.image) || !image.getMask(atlas.mask) || atlas.image.isNull())
            std::abort();
        return atlas;
    }
    static Atlas decoded(const QByteArray &png)
    {
        Atlas atlas;
        if (!atlas.image.loadFromData(png))
            std::abort();
        atlas.mask = atlas.image.mask();
        return atlas;
    }
    void draw() const
    {
        QImage screen(240, 320, QImage::Format_RGB32);
        QPainter painter(&screen);
        for (int y = 0; y < kSide; y += screen.height()) {
            for (int x = 0; x < kSide; x += screen.width())
                painter.drawPixmap(0, 0, image, x, y, screen.width(), screen.height());
        }
        static volatile QRgb seen;
        for (int y = 0; y < kSide && !mask.isNull(); ++y)
            seen = mask.toImage().pixel(y, y);
        std::ignore = seen;
    }
};

// This process's part of all memory, in KiB.
long proportionalSize()
{
    FILE *file = std::fopen("/proc/self/smaps_rollup", "re");
    char line[256];
    long size = -1;
    while (file && std::fgets(line, sizeof line, file)) {
        if (std::sscanf(line, "Pss: %ld", &size) == 1)
            break;
    }
    if (file)
        std::fclose(file);
    return size;
}

// Started anew, so that it shares with the others what applications do, and not what was there at a fork.
int beProcess(const char *mode)
{
    Atlas atlas;
    if (*mode == 's') {
        atlas = Atlas::shared();
    } else if (*mode == 'd') {
        QFile file(QStringLiteral("/tmp/atlas.png"));
        if (!file.open(QIODevice::ReadOnly))
            return 1;
        atlas = Atlas::decoded(file.readAll());
    }
    if (*mode != 'n')
        atlas.draw();
    char byte = 0;
    if (::write(STDOUT_FILENO, "x", 1) != 1 || ::read(STDIN_FILENO, &byte, 1) != 1) // all of them have theirs
        return 1;
    const long size = proportionalSize();
    if (::write(STDOUT_FILENO, &size, sizeof size) != sizeof size)
        return 1;
    return ::read(STDIN_FILENO, &byte, 1) == 0 ? 0 : 1; // until all have answered
}

struct Child {
    pid_t process;
    int to, from;
};

Child start(const char *program, const char *mode)
{
    int in[2], out[2];
    if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0)
        std::abort();
    const pid_t process = ::fork();
    if (process == 0) {
        ::dup2(in[0], STDIN_FILENO);
        ::dup2(out[1], STDOUT_FILENO);
        ::execl(program, program, "child", mode, static_cast<char *>(nullptr));
        ::_exit(1);
    }
    ::close(in[0]);
    ::close(out[1]);
    return {process, in[1], out[0]};
}

// The sum over all processes in KiB, while all of them live.
long memoryOf(const char *program, const char *mode, int count)
{
    std::vector<Child> children;
    for (int i = 0; i < count; ++i)
        children.push_back(start(program, mode));
    char byte = 0;
    bool well = true;
    for (const Child &child : children)
        well = ::read(child.from, &byte, 1) == 1 && well;
    long sum = 0;
    for (const Child &child : children) {
        long size = 0;
        well = ::write(child.to, "x", 1) == 1 && ::read(child.from, &size, sizeof size) == sizeof size && well;
        sum += size;
    }
    for (const Child &child : children) {
        ::close(child.to);
        ::close(child.from);
    }
    for (const Child &child : children)
        ::waitpid(child.process, nullptr, 0);
    if (!well)
        std::abort();
    return sum;
}

}

int main(int argc, char **argv)
{
    std::freopen("/dev/null", "w", stderr); // what the class tells would be most of what is measured
    const QGuiApplication app(argc, argv);
    if (argc == 3 && std::string_view(argv[1]) == "child")
        return beProcess(argv[2]);
    const int count = argc > 1 ? std::atoi(argv[1]) : 8;
    const QByteArray png = atlas();
    QFile file(QStringLiteral("/tmp/atlas.png"));
    if (!file.open(QIODevice::WriteOnly) || file.write(png) != png.size())
        return 1;
    file.close();
    const UTIL_ShareImage owner(kName);
    const double create = medianMicroseconds([&] {
        UTIL_ShareImage image(kName);
        if (!image.create(png.constData(), unsigned(png.size())))
            std::abort();
    });
    const double attach = medianMicroseconds([] { Atlas::shared(); });
    const double decode = medianMicroseconds([&] { Atlas::decoded(png); });
    std::printf("an atlas of %d x %d, %lld bytes of PNG; medians of %d\n", kSide, kSide, qint64(png.size()), kRounds);
    std::printf("  decode, and make the mask   %10.1f us\n", decode);
    std::printf("  decode, and share           %10.1f us   %.2f times decoding\n", create, create / decode);
    std::printf("  attach to the shared one    %10.1f us   %.0f times faster than decoding\n", attach, decode / attach);
    const long none = memoryOf(argv[0], "none", count);
    const long decoded = memoryOf(argv[0], "decoded", count);
    const long shared = memoryOf(argv[0], "shared", count);
    std::printf("proportional memory of %d processes that have drawn all of it, KiB\n", count);
    std::printf("  without an atlas            %10ld\n", none);
    std::printf("  each its own                %10ld   %+ld\n", decoded, decoded - none);
    std::printf("  shared                      %10ld   %+ld\n", shared, shared - none);
    return 0;
}
