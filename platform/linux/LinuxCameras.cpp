#include "platform/linux/LinuxCameras.h"

#include "base/Dates.h"

#include <gphoto2/gphoto2.h>

#include <algorithm>
#include <exception>
#include <mutex>

namespace korvo {

namespace {

constexpr std::size_t largestPreview = 512 * 1024; // bytes
constexpr int deepest = 32; // folders within folders; a camera that shows more is broken

struct Free {
    void operator()(GPContext* it) const { gp_context_unref(it); }
    void operator()(CameraAbilitiesList* it) const { gp_abilities_list_free(it); }
    void operator()(GPPortInfoList* it) const { gp_port_info_list_free(it); }
    void operator()(CameraList* it) const { gp_list_free(it); }
    void operator()(CameraFile* it) const { gp_file_unref(it); }
    void operator()(Camera* it) const { gp_camera_unref(it); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free>;

[[noreturn]] void fail(int code)
{
    const auto hint = code == GP_ERROR_IO_USB_CLAIM
        ? " Another program uses the camera, often the desktop's file manager: unmount it there."
        : "";
    throw SourceError(std::string("the camera says: ") + gp_result_as_string(code) + "." + hint);
}

int check(int code)
{
    if (code < GP_OK)
        fail(code);
    return code;
}

template <typename T>
Owned<T> make(int (*create)(T**))
{
    T* made = nullptr;
    check(create(&made));
    return Owned<T>(made);
}

/// What libgphoto2 knows of cameras and ports.
struct Drivers {
    Drivers()
    {
        check(gp_abilities_list_load(models.get(), context.get()));
        check(gp_port_info_list_load(ports.get()));
    }

    Owned<GPContext> context{gp_context_new()};
    Owned<CameraAbilitiesList> models = make(gp_abilities_list_new);
    Owned<GPPortInfoList> ports = make(gp_port_info_list_new);
};

/// The names of a list, in the order of their bytes.
std::vector<std::string> names(CameraList* list)
{
    std::vector<std::string> result;
    for (int i = 0; i < gp_list_count(list); ++i) {
        const char* name = nullptr;
        check(gp_list_get_name(list, i, &name));
        if (*name != '.' && *name != '\0')
            result.emplace_back(name);
    }
    std::sort(result.begin(), result.end());
    return result;
}

/// Where a download goes. What `use` throws waits here until libgphoto2 has returned.
struct Download {
    const std::function<void(Bytes)>& use;
    const std::stop_token& stop;
    std::exception_ptr thrown;

    int take(Bytes bytes)
    {
        if (stop.stop_requested())
            return GP_ERROR_CANCEL;
        try {
            use(bytes);
            return GP_OK;
        } catch (...) {
            thrown = std::current_exception();
            return GP_ERROR_CANCEL;
        }
    }
};

CameraFileHandler downloadHandler()
{
    CameraFileHandler handler{};
    handler.size = [](void*, std::uint64_t* size) {
        *size = 0;
        return GP_OK;
    };
    handler.read = [](void*, unsigned char*, std::uint64_t*) { return GP_ERROR_NOT_SUPPORTED; };
    handler.write = [](void* download, unsigned char* data, std::uint64_t* size) {
        return static_cast<Download*>(download)->take({data, static_cast<std::size_t>(*size)});
    };
    return handler;
}

class OpenCamera : public FileSource {
public:
    explicit OpenCamera(const ConnectedCamera& camera)
    {
        CameraAbilities abilities{};
        const int model = check(gp_abilities_list_lookup_model(drivers_.models.get(), camera.name.c_str()));
        check(gp_abilities_list_get_abilities(drivers_.models.get(), model, &abilities));
        check(gp_camera_set_abilities(camera_.get(), abilities));
        GPPortInfo port{};
        const int index = check(gp_port_info_list_lookup_path(drivers_.ports.get(), camera.port.c_str()));
        check(gp_port_info_list_get_info(drivers_.ports.get(), index, &port));
        check(gp_camera_set_port_info(camera_.get(), port));
        check(gp_camera_init(camera_.get(), context()));
    }

    SourceListing list(Admits admits, const std::stop_token& stop) override
    {
        const std::lock_guard lock(mutex_);
        SourceListing listing;
        walk("/", admits, stop, listing, 0);
        return listing;
    }

    void read(
        const SourceFile& file, const std::function<void(Bytes)>& use, const std::stop_token& stop) override
    {
        get(file, GP_FILE_TYPE_NORMAL, use, stop);
    }

    std::string preview(const SourceFile& file, const std::stop_token& stop) override
    {
        std::string picture;
        const auto take = [&](Bytes bytes) {
            if (bytes.size() > largestPreview - picture.size())
                throw SourceError("The preview of " + file.path.string() + " is too large");
            picture.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        };
        get(file, GP_FILE_TYPE_PREVIEW, take, stop);
        return stop.stop_requested() ? std::string() : picture;
    }

private:
    void get(const SourceFile& file, CameraFileType type, const std::function<void(Bytes)>& use,
        const std::stop_token& stop)
    {
        const std::lock_guard lock(mutex_);
        if (stop.stop_requested())
            return;
        Download download{use, stop, {}};
        auto handler = downloadHandler();
        CameraFile* made = nullptr;
        check(gp_file_new_from_handler(&made, &handler, &download));
        const Owned<CameraFile> target(made);
        const int code = gp_camera_file_get(camera_.get(), file.path.parent_path().c_str(),
            file.path.filename().c_str(), type, target.get(), context());
        if (download.thrown)
            std::rethrow_exception(download.thrown);
        if (!stop.stop_requested())
            check(code);
    }

    void walk(const std::filesystem::path& folder, Admits admits, const std::stop_token& stop,
        SourceListing& listing, int depth)
    {
        if (stop.stop_requested())
            return;
        if (depth > deepest)
            return listing.failures.push_back({folder, "lies too deep"});
        try {
            const auto files = make(gp_list_new);
            check(gp_camera_folder_list_files(camera_.get(), folder.c_str(), files.get(), context()));
            for (const auto& name : names(files.get()))
                if (admits(name) && !stop.stop_requested())
                    add(listing, folder, name);
            const auto folders = make(gp_list_new);
            check(gp_camera_folder_list_folders(camera_.get(), folder.c_str(), folders.get(), context()));
            for (const auto& name : names(folders.get()))
                walk(folder / name, admits, stop, listing, depth + 1);
        } catch (const SourceError& error) {
            if (depth == 0)
                throw;
            listing.failures.push_back({folder, error.what()});
        }
    }

    /// A file that is not described is a failure of its own, not of its folder.
    void add(SourceListing& listing, const std::filesystem::path& folder, const std::string& name)
    {
        try {
            listing.files.push_back(describe(folder, name));
        } catch (const SourceError& error) {
            listing.failures.push_back({folder / name, error.what()});
        }
    }

    SourceFile describe(const std::filesystem::path& folder, const std::string& name)
    {
        CameraFileInfo info{};
        check(gp_camera_file_get_info(camera_.get(), folder.c_str(), name.c_str(), &info, context()));
        SourceFile file{folder / name, {}, info.file.size, {}};
        if (info.file.fields & GP_FILE_INFO_MTIME)
            file.modified = fileTime(static_cast<UnixTime>(info.file.mtime));
        return file;
    }

    GPContext* context() const { return drivers_.context.get(); }

    std::mutex mutex_; // a preview may be asked for while another thread reads
    Drivers drivers_;
    Owned<Camera> camera_ = make(gp_camera_new);
};

} // namespace

std::vector<ConnectedCamera> LinuxCameras::connected()
{
    const Drivers drivers;
    const auto found = make(gp_list_new);
    check(gp_abilities_list_detect(
        drivers.models.get(), drivers.ports.get(), found.get(), drivers.context.get()));
    std::vector<ConnectedCamera> cameras;
    for (int i = 0; i < gp_list_count(found.get()); ++i) {
        const char* name = nullptr;
        const char* port = nullptr;
        check(gp_list_get_name(found.get(), i, &name));
        check(gp_list_get_value(found.get(), i, &port));
        if (std::string_view(port).starts_with("usb:")) // cards that are mounted are volumes
            cameras.push_back({name, port});
    }
    return cameras;
}

std::unique_ptr<FileSource> LinuxCameras::open(const ConnectedCamera& camera)
{
    return std::make_unique<OpenCamera>(camera);
}

} // namespace korvo
