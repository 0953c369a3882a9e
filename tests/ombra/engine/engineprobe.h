#pragma once

#include "tarn/scene/scene.h"

#include <QElapsedTimer>
#include <boost/asio/io_context.hpp>

#include <chrono>
#include <functional>
#include <string>

namespace vantrel::test {

/// What a test of a live engine runs it with, and how it reads the scene that the engine writes.
class EngineProbe
{
protected:
    /// Serves the engine until the condition holds, eight seconds at the most.
    bool waitFor(const std::function<bool()>& condition)
    {
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < 8000;) {
            if (condition())
                return true;
            m_io.restart();
            m_io.run_one_for(std::chrono::milliseconds(2));
        }
        return false;
    }
    Variant sceneValue(const std::string& path, const char* name) const
    {
        Variant value;
        m_scene->getProperty(m_scene->find(path + "/properties/" + name), value);
        return value;
    }
    double number(const std::string& path, const char* name) const
    {
        return sceneValue(path, name).as<double>();
    }
    std::string text(const std::string& path, const char* name) const
    {
        return sceneValue(path, name).asString();
    }

    boost::asio::io_context m_io;
    Ref<Scene> m_scene;
};

} // namespace vantrel::test
