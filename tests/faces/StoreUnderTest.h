#pragma once

#include "faces/ModelStore.h"
#include "platform/linux/CurlDownloader.h"
#include "tests/support/HttpServer.h"
#include "tests/support/ManualMainThread.h"
#include "tests/support/ScopedVariable.h"
#include "tests/support/TemporaryFolder.h"

#include <list>
#include <memory>
#include <string>
#include <vector>

namespace korvo {

/// The bytes of the model that the tests install.
const std::string& modelBytes();

/// A file of a model with those bytes.
ModelFile modelFile(const std::filesystem::path& place, const std::string& source);

/// Sends the model.
void sendModel(const std::string& target, HttpConnection& connection);

/// Sends the beginning of the model, and then nothing more.
void sendHalf(const std::string& target, HttpConnection& connection);

/// A store of one file, "models/test.onnx", with a server that it downloads from, and what an observer sees
/// of it.
class StoreUnderTest {
public:
    explicit StoreUnderTest(HttpServer::Handler handler = sendModel);

    /// Makes the store anew, as the next start of the program does.
    void start(ModelSet models = {"test model", {modelFile("models/test.onnx", "/test.onnx")}});

    /// Lets the store work until it is no longer downloading.
    void finish();
    /// Lets the store work until bytes of a running download have been reported.
    void waitForBytes();

    /// Waits for the background to remove a file.
    static void waitUntilGone(const std::filesystem::path& file);

    /// The files below the root, with the folders.
    std::vector<std::string> files() const;

    std::filesystem::path target() const { return root / "models/test.onnx"; }
    std::filesystem::path part() const { return root / "models/test.onnx.part"; }

    std::list<ScopedVariable> variables = withoutProxies();
    TemporaryFolder root;
    ManualMainThread main;
    CurlDownloader downloader{{.silenceTimeout = std::chrono::seconds(10)}};
    HttpServer server;
    std::unique_ptr<ModelStore> store;
    /// "downloading", "ready", "failed: …": each state as it came, the many of one download counted once.
    std::vector<std::string> seen;
    /// Called after a state was written down.
    std::function<void()> reaction = [] {};

private:
    void observe();

    Connection connection_;
};

} // namespace korvo
