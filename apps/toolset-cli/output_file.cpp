#include "output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "ts/format.h"
#include "ts/text.h"

namespace cli {

namespace {

struct FileId {
    dev_t device = 0;
    ino_t inode = 0;
};

bool IdOf(const std::string& path, FileId& id) {
    struct stat st {};
    if (::stat(path.c_str(), &st) != 0) return false;
    id = {st.st_dev, st.st_ino};
    return true;
}

bool Same(const FileId& a, const FileId& b) {
    return a.device == b.device && a.inode == b.inode;
}

// A toolset module is an SQLite file ("SQLite format 3" header) whose application id, the four
// bytes at offset 68, spell "MTS1".
bool IsToolsetModule(const std::string& path) {
    int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return false;
    std::array<char, 72> header{};
    ssize_t n = ::pread(fd, header.data(), header.size(), 0);
    ::close(fd);
    return n == static_cast<ssize_t>(header.size()) &&
           std::memcmp(header.data(), "SQLite format 3\0", 16) == 0 &&
           std::memcmp(header.data() + 68, "MTS1", 4) == 0;
}

std::u16string SystemReason(int error) {
    return ts::Format(u"%s", std::strerror(error));
}

}  // namespace

bool MayWriteOver(const std::string& target, const std::string& module, std::u16string& why) {
    FileId targetId;
    if (!IdOf(target, targetId)) return true;  // nothing there yet, or nothing we can name
    for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
        FileId moduleId;
        if (IdOf(module + suffix, moduleId) && Same(targetId, moduleId)) {
            why = ts::Format(
                u"\"%s\" is the module \"%s\"%s itself; write the export to a file "
                u"of its own",
                target, module, *suffix ? " (one of its working files)" : "");
            return false;
        }
    }
    if (IsToolsetModule(target)) {
        why = ts::Format(u"\"%s\" is a toolset module; an export does not write over a module",
                         target);
        return false;
    }
    return true;
}

bool WriteWholeFile(const std::string& target, std::string_view bytes, std::u16string& error) {
    auto fail = [&](int code, const std::string& partial) {
        if (!partial.empty()) ::unlink(partial.c_str());
        error = ts::Format(u"\"%s\" could not be written: %ls", target, SystemReason(code));
        return false;
    };
    auto writeAll = [&](int fd) {
        for (std::size_t done = 0; done < bytes.size();) {
            ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) return n < 0 ? errno : EIO;
            done += static_cast<std::size_t>(n);
        }
        return 0;
    };
    // A device or pipe (/dev/null, a named pipe) is written to as it is: it cannot be replaced.
    struct stat st {};
    if (::stat(target.c_str(), &st) == 0 && !S_ISREG(st.st_mode) && !S_ISDIR(st.st_mode)) {
        int fd = ::open(target.c_str(), O_WRONLY | O_CLOEXEC);
        if (fd < 0) return fail(errno, {});
        int code = writeAll(fd);
        if (::close(fd) != 0 && code == 0) code = errno;
        return code == 0 || fail(code, {});
    }
    // A name no other program uses, in the target's folder so that the rename stays on one disk.
    std::string partial;
    int fd = -1;
    for (int attempt = 0; fd < 0; ++attempt) {
        partial = ts::Utf16ToUtf8(
            ts::Format(u"%s.%d-%d.partial", target, static_cast<int>(::getpid()), attempt));
        fd = ::open(partial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && (errno != EEXIST || attempt >= 100)) return fail(errno, {});
    }
    if (int code = writeAll(fd); code != 0) {
        ::close(fd);
        return fail(code, partial);
    }
    if (::fsync(fd) != 0) {
        int code = errno;
        ::close(fd);
        return fail(code, partial);
    }
    if (::close(fd) != 0) return fail(errno, partial);
    if (::rename(partial.c_str(), target.c_str()) != 0) return fail(errno, partial);
    return true;
}

}  // namespace cli
