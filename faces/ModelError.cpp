#include "faces/ModelError.h"

namespace korvo {

namespace {

std::string textOf(ModelError::Case which, const std::string& model)
{
    switch (which) {
    case ModelError::Case::checksum:
        return "The " + model + " didn't match its fingerprint — nothing was installed.";
    case ModelError::Case::busy:
        return "The " + model + " is being downloaded by another window or command.";
    case ModelError::Case::noFiles:
        break;
    }
    return "There is no " + model + " to download yet.";
}

} // namespace

ModelError::ModelError(Case which, const std::string& model) : which_(which), text_(textOf(which, model)) { }

} // namespace korvo
