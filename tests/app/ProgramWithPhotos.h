#pragma once

#include "tests/app/KorvoProgram.h"

#include <gtest/gtest.h>

namespace korvo {

/// The program with the library and three photos in it.
class ProgramWithPhotos : public ::testing::Test, protected KorvoProgram {
protected:
    ProgramWithPhotos()
    {
        for (const char* name : {"a.jpg", "b.jpg", "c.mov"})
            folder.write(std::string("photos/") + name, "x");
        run("create " + (folder / "Library").string());
        run("--quiet add " + (folder / "photos").string());
    }
};

} // namespace korvo
