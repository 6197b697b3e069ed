#include "platform/FileSync.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace korvo {

namespace {

class Descriptor {
public:
    Descriptor(const std::filesystem::path& path, int flags)
        : path_(path), fd_(::open(path.c_str(), flags | O_CLOEXEC, 0666))
    {
        if (fd_ < 0)
            fail("cannot open");
    }
    ~Descriptor() { ::close(fd_); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    void write(std::string_view contents)
    {
        while (!contents.empty()) {
            const auto written = ::write(fd_, contents.data(), contents.size());
            if (written < 0 && errno == EINTR)
                continue;
            if (written < 0)
                fail("cannot write");
            contents.remove_prefix(static_cast<std::size_t>(written));
        }
    }

    void sync()
    {
        if (::fsync(fd_) != 0)
            fail("cannot flush");
    }

private:
    [[noreturn]] void fail(const char* what) const
    {
        throw std::filesystem::filesystem_error(what, path_, {errno, std::generic_category()});
    }

    const std::filesystem::path& path_;
    int fd_;
};

} // namespace

void moveIntoPlace(const std::filesystem::path& from, const std::filesystem::path& to)
{
    Descriptor(from, O_RDONLY).sync();
    std::filesystem::rename(from, to);
    Descriptor(to.parent_path(), O_RDONLY | O_DIRECTORY).sync();
}

void replaceFile(const std::filesystem::path& file, std::string_view contents)
{
    std::filesystem::create_directories(file.parent_path());
    auto unfinished = file;
    unfinished += "." + std::to_string(::getpid()) + ".part";
    try {
        Descriptor(unfinished, O_WRONLY | O_CREAT | O_TRUNC).write(contents);
        moveIntoPlace(unfinished, file);
    } catch (...) {
        std::error_code ignored; // the first error is the one to report
        std::filesystem::remove(unfinished, ignored);
        throw;
    }
}

} // namespace korvo
