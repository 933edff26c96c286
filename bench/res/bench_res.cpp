// Resource files beside what else there is: GResource, QResource, and the system calls alone. The files are made by
// generate.py and stand in the working directory.
#include <QResource>
#include <ZResFileReader>
#include <ZResFileWriter>
#include <benchmark/benchmark.h>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <gio/gio.h>
#include <string>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

enum Kind { Words, Numbers };

std::string stem(const benchmark::State &state)
{
    return (state.range(0) == Words ? "words" : "numbers") + std::to_string(state.range(1));
}

// What is asked for, in an order of its own.
std::vector<std::string> names(
    const benchmark::State &state, const std::string &prefix, const std::string &list = ".names")
{
    std::ifstream file(stem(state) + list);
    std::vector<std::string> all;
    for (std::string line; std::getline(file, line);)
        all.push_back(prefix + line);
    return all;
}

std::vector<QString> texts(const benchmark::State &state, const std::string &prefix)
{
    std::vector<QString> all;
    for (const std::string &name : names(state, prefix))
        all.push_back(QString::fromStdString(name));
    return all;
}

struct Mapped {
    explicit Mapped(const std::string &path)
    {
        const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status = {};
        ::fstat(fd, &status);
        size = size_t(status.st_size);
        bytes = static_cast<const char *>(::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0));
        ::close(fd);
    }
    ~Mapped() { ::munmap(const_cast<char *>(bytes), size); }

    const char *bytes = nullptr;
    size_t size = 0;
};

void check(benchmark::State &state, bool found)
{
    if (!found)
        state.SkipWithError("not found");
}

// Opening a file and touching one page of it.
void floorOfOpening(benchmark::State &state)
{
    const std::string path = stem(state) + ".tyx";
    for (auto _ : state) {
        const Mapped file(path);
        benchmark::DoNotOptimize(*static_cast<const volatile char *>(file.bytes));
    }
}
void openAndFind_floor(benchmark::State &state) { floorOfOpening(state); }
void openAndAsk_floor(benchmark::State &state) { floorOfOpening(state); }

// Whether a name is there.
void openAndFind_Tyx(benchmark::State &state)
{
    const QString path = QString::fromStdString(stem(state) + ".tyx");
    const auto all = texts(state, "");
    size_t next = 0;
    for (auto _ : state) {
        ZResFileReader reader(path);
        check(state, reader.exists(all[next++ % all.size()]));
    }
}

void openAndFind_GResource(benchmark::State &state)
{
    const std::string path = stem(state) + ".gresource";
    const auto all = names(state, "/", ".paths");
    size_t next = 0;
    for (auto _ : state) {
        GResource *resource = g_resource_load(path.c_str(), nullptr);
        check(state,
            g_resource_get_info(
                resource, all[next++ % all.size()].c_str(), G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr, nullptr, nullptr));
        g_resource_unref(resource);
    }
}

void openAndFind_QResource(benchmark::State &state)
{
    const QString path = QString::fromStdString(stem(state) + ".rcc");
    const auto all = texts(state, ":/");
    size_t next = 0;
    for (auto _ : state) {
        QResource::registerResource(path);
        check(state, QResource(all[next++ % all.size()]).isValid());
        QResource::unregisterResource(path);
    }
}

// The first byte of what has the name.

void openAndAsk_Tyx(benchmark::State &state)
{
    const QString path = QString::fromStdString(stem(state) + ".tyx");
    const auto all = texts(state, "");
    size_t next = 0;
    const char *data = nullptr;
    unsigned int length = 0;
    for (auto _ : state) {
        ZResFileReader reader(path);
        check(state, reader.get(all[next++ % all.size()], data, length) && *data == '0');
    }
}

void openAndAsk_GResource(benchmark::State &state)
{
    const std::string path = stem(state) + ".gresource";
    const auto all = names(state, "/", ".paths");
    size_t next = 0;
    for (auto _ : state) {
        GResource *resource = g_resource_load(path.c_str(), nullptr);
        GBytes *bytes =
            g_resource_lookup_data(resource, all[next++ % all.size()].c_str(), G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr);
        check(state, bytes && *static_cast<const char *>(g_bytes_get_data(bytes, nullptr)) == '0');
        g_bytes_unref(bytes);
        g_resource_unref(resource);
    }
}

void openAndAsk_QResource(benchmark::State &state)
{
    const QString path = QString::fromStdString(stem(state) + ".rcc");
    const auto all = texts(state, ":/");
    size_t next = 0;
    for (auto _ : state) {
        QResource::registerResource(path);
        {
            const QResource resource(all[next++ % all.size()]);
            check(state, resource.data() && *resource.data() == '0');
        }
        QResource::unregisterResource(path);
    }
}

// The plainest way that needs no tables: through the lines of the file.
void ask_scan(benchmark::State &state)
{
    const Mapped file(stem(state) + ".tyx");
    const auto all = names(state, "\n");
    size_t next = 0;
    for (auto _ : state) {
        const std::string &name = all[next++ % all.size()];
        check(state, ::memmem(file.bytes, file.size, name.data(), name.size()) != nullptr);
    }
}

void ask_Tyx(benchmark::State &state)
{
    ZResFileReader reader(QString::fromStdString(stem(state) + ".tyx"));
    const auto all = texts(state, "");
    size_t next = 0;
    const char *data = nullptr;
    unsigned int length = 0;
    for (const QString &name : all) // a program that goes on asking has its index by then
        check(state, reader.get(name, data, length));
    for (auto _ : state)
        check(state, reader.get(all[next++ % all.size()], data, length) && *data == '0');
}

void ask_GResource(benchmark::State &state)
{
    GResource *resource = g_resource_load((stem(state) + ".gresource").c_str(), nullptr);
    const auto all = names(state, "/", ".paths");
    size_t next = 0;
    for (auto _ : state) {
        GBytes *bytes =
            g_resource_lookup_data(resource, all[next++ % all.size()].c_str(), G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr);
        check(state, bytes && *static_cast<const char *>(g_bytes_get_data(bytes, nullptr)) == '0');
        g_bytes_unref(bytes);
    }
    g_resource_unref(resource);
}

void ask_QResource(benchmark::State &state)
{
    const QString path = QString::fromStdString(stem(state) + ".rcc");
    QResource::registerResource(path);
    const auto all = texts(state, ":/");
    size_t next = 0;
    for (auto _ : state) {
        const QResource resource(all[next++ % all.size()]);
        check(state, resource.data() && *resource.data() == '0');
    }
    QResource::unregisterResource(path);
}

// Adding, table and file of that many numbered names.
void write_Tyx(benchmark::State &state)
{
    std::vector<QString> all;
    for (int64_t number = 0; number < state.range(1); ++number)
        all.push_back(QStringLiteral("icon_%1.g").arg(number, 6, 10, QChar(u'0')));
    const QByteArray data("0123456789abcdef");
    for (auto _ : state) {
        ZResFileWriter writer(QStringLiteral("written.tyx"));
        for (const QString &name : all)
            writer.add(name, data);
        check(state, writer.save());
    }
}

void everyFile(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgsProduct({{Words, Numbers}, {100, 10'000, 200'000}});
}

}

BENCHMARK(openAndFind_floor)->Apply(everyFile);
BENCHMARK(openAndFind_Tyx)->Apply(everyFile);
BENCHMARK(openAndFind_GResource)->Apply(everyFile);
BENCHMARK(openAndFind_QResource)->Apply(everyFile);
BENCHMARK(openAndAsk_floor)->Apply(everyFile);
BENCHMARK(openAndAsk_Tyx)->Apply(everyFile);
BENCHMARK(openAndAsk_GResource)->Apply(everyFile);
BENCHMARK(openAndAsk_QResource)->Apply(everyFile);
BENCHMARK(ask_scan)->Apply(everyFile);
BENCHMARK(ask_Tyx)->Apply(everyFile);
BENCHMARK(ask_GResource)->Apply(everyFile);
BENCHMARK(ask_QResource)->Apply(everyFile);
BENCHMARK(write_Tyx)->Args({Numbers, 200'000})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_MAIN();
