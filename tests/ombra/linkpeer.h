#pragma once

#include "tarn/net/linkframe.h"
#include "tarn/scene/scene.h"

#include <QTcpSocket>

#include <string>
#include <vector>

namespace vantrel::ombra::test {

/// A client by its bytes: what it sends, and the scene that what it got makes.
class LinkPeer
{
public:
    explicit LinkPeer(unsigned short port) { socket.connectToHost(QStringLiteral("127.0.0.1"), port); }

    void send(const std::string& operations)
    {
        Patch patch;
        std::string error;
        if (!Patch::parseString(operations, patch, &error))
            qFatal("%s", error.c_str());
        const std::string frame = linkframe::encode(patch);
        socket.write(frame.data(), qint64(frame.size()));
    }

    void read()
    {
        const QByteArray bytes = socket.readAll();
        decoder.feed({bytes.constData(), std::size_t(bytes.size())});
        for (Patch patch; decoder.next(patch) == linkframe::Decoder::Result::Patch;) {
            ++frames;
            largest = std::max(largest, patch.size());
            for (const PatchOp& op : patch)
                operations.push_back(op);
            fits = scene.apply(patch, true) && fits;
        }
    }

    std::string value(const std::string& path)
    {
        Variant value;
        return scene.getProperty(scene.find(path), value) ? value.asString() : "absent";
    }

    QTcpSocket socket;
    linkframe::Decoder decoder;
    Scene scene;
    std::vector<PatchOp> operations;
    int frames = 0;
    std::size_t largest = 0;
    bool fits = true;
};

} // namespace vantrel::ombra::test
