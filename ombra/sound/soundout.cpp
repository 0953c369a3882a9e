#include "ombra/sound/soundout.h"

#include "ombra/sound/soundkeeper.h"

namespace vantrel::ombra {

SoundOut::SoundOut(std::string owner, std::string device)
    : m_keeper(std::make_shared<Keeper>(std::move(owner), std::move(device)))
    , m_thread([keeper = m_keeper] { keeper->run(); })
{
}

SoundOut::~SoundOut()
{
    m_keeper->setAsker({});
    if (m_keeper->stop())
        m_thread.join();
    else
        m_thread.detach();
}

void SoundOut::setDevice(const std::string& device)
{
    m_keeper->setDevice(device);
}

void SoundOut::setOffset(double seconds)
{
    m_keeper->setOffset(seconds);
}

void SoundOut::setAsker(std::function<void()> asker)
{
    m_keeper->setAsker(std::move(asker));
}

void SoundOut::play(const HeardMoment& moment)
{
    if (const std::shared_ptr<SoundStream> stream = m_keeper->stream())
        stream->play(moment);
}

double SoundOut::pictureDelay(double pictureRate)
{
    return m_keeper->pictureDelay(pictureRate);
}

bool SoundOut::isHanging()
{
    return Keeper::isHanging();
}

std::string SoundOut::trouble() const
{
    return m_keeper->trouble();
}

} // namespace vantrel::ombra
