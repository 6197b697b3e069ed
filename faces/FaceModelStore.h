#pragma once

#include "faces/ModelStore.h"

namespace korvo {

/// The model that face recognition needs: SFace, the release of December 2021, as published by OpenCV.
ModelSet faceModel();

/// The store of the face-recognition model.
class FaceModelStore : public ModelStore {
public:
    FaceModelStore(MainThread& main, Downloader& downloader, std::filesystem::path root,
        std::string host = defaultModelHost);

    /// Where the model is, or will be once it is installed.
    std::filesystem::path modelPath() const;
};

} // namespace korvo
