#include "ombra/show/noticeboard.h"

#include "tarn/log/log.h"

namespace vantrel::ombra {

void NoticeBoard::set(const std::string& matter, const std::string& sentence)
{
    const auto present = m_sentences.find(matter);
    if (sentence == (present == m_sentences.end() ? std::string() : present->second))
        return;
    if (sentence.empty()) {
        Log::write(LogLevel::Info, "vantrel.show", "no longer: " + present->second);
        m_sentences.erase(present);
    } else {
        Log::write(LogLevel::Warning, "vantrel.show", sentence);
        m_sentences[matter] = sentence;
    }
    std::string text;
    for (const auto& [ignored, one] : m_sentences)
        text += (text.empty() ? "" : "\n") + one;
    Object* system = m_scene.findObject("/device/system");
    const PropertyInfo* notice = system ? system->findProperty("notice") : nullptr;
    if (notice && system->setProperty(notice, Variant::from(text)))
        m_scene.notifyPropertyChange(system, notice, Variant::from(text));
}

} // namespace vantrel::ombra
