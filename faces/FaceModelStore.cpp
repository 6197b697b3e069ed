#include "faces/FaceModelStore.h"

#include <utility>

namespace korvo {

namespace {

/// The folder carries the model's date and the beginning of its pinned revision, so that a later model is
/// installed beside this one and not over it.
ModelFile sFace()
{
    return {
        "Models/sface-2021dec-3d70824/face_recognition_sface_2021dec.onnx",
        "/opencv/face_recognition_sface/resolve/3d7082438a6e4551e840c9b2bb60b71e8da4b524"
        "/face_recognition_sface_2021dec.onnx",
        "0ba9fbfa01b5270c96627c4ef784da859931e02f04419c829e83484087c34e79",
        std::uint64_t{128} << 20, // some 40 MB are expected
    };
}

} // namespace

ModelSet faceModel()
{
    return {"face recognition model", {sFace()}};
}

FaceModelStore::FaceModelStore(
    MainThread& main, Downloader& downloader, std::filesystem::path root, std::string host)
    : ModelStore(main, downloader, faceModel(), std::move(root), std::move(host))
{ }

std::filesystem::path FaceModelStore::modelPath() const
{
    return placeOf(sFace());
}

} // namespace korvo
