// Reads every file of a folder and writes their bytes into one, with the syncs of a safe replacement: pack_floor FOLDER
// FILE
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    const std::string folder = argv[1];
    const std::string file = argv[2];
    std::string all;
    DIR *entries = ::opendir(folder.c_str());
    while (const dirent *entry = ::readdir(entries)) {
        if (entry->d_name[0] == '.')
            continue;
        const int fd = ::open((folder + '/' + entry->d_name).c_str(), O_RDONLY | O_CLOEXEC);
        struct stat status = {};
        if (fd < 0 || ::fstat(fd, &status) != 0)
            return 3;
        const size_t at = all.size();
        all.resize(at + size_t(status.st_size));
        if (::read(fd, all.data() + at, size_t(status.st_size)) != status.st_size)
            return 3;
        ::close(fd);
    }
    ::closedir(entries);
    const int out = ::open((file + ".new").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (::write(out, all.data(), all.size()) != ssize_t(all.size()) || ::fsync(out) != 0 || ::close(out) != 0)
        return 3;
    const int parent = ::open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    return ::rename((file + ".new").c_str(), file.c_str()) == 0 && ::fsync(parent) == 0 ? 0 : 3;
}
