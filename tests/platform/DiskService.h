#pragma once

#include <filesystem>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

typedef struct _GTestDBus GTestDBus;
typedef struct _GMainContext GMainContext;
typedef struct _GMainLoop GMainLoop;
typedef struct _GDBusConnection GDBusConnection;
typedef struct _GVariant GVariant;

namespace korvo {

/// A bus of its own with a service for disks on it that knows one card and really unmounts it.
class DiskService {
public:
    DiskService();
    ~DiskService();
    DiskService(const DiskService&) = delete;
    DiskService& operator=(const DiskService&) = delete;

    std::string address() const;

    void showCard(dev_t device, const std::filesystem::path& root);
    /// From now on calls fail with this message.
    void refuse(const std::string& message);
    /// The methods called that change something.
    std::vector<std::string> calls() const;

    /// Answers a call of the bus.
    struct Answer {
        GVariant* value = nullptr;
        std::string error;
    };
    Answer answer(const std::string& method);

private:
    mutable std::mutex mutex_;
    dev_t device_ = 0;
    std::filesystem::path root_;
    std::string refusal_;
    std::vector<std::string> calls_;
    GTestDBus* bus_;
    GMainContext* context_;
    GMainLoop* loop_;
    std::thread thread_;
};

} // namespace korvo
