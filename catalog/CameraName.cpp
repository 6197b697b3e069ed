#include "catalog/CameraName.h"

#include "base/Text.h"

namespace korvo {

std::string cameraName(std::string_view make, std::string_view model)
{
    const bool isNamed = asciiLower(model).find(asciiLower(make)) != std::string::npos;
    if (make.empty() || model.empty() || isNamed)
        return std::string(model.empty() ? make : model);
    return std::string(make) + " " + std::string(model);
}

} // namespace korvo
