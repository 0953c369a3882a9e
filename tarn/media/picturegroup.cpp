#include "tarn/media/picturegroup.h"

#include "tarn/media/numberseries.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace vantrel {

namespace {

PictureNumber pictureNumber(WrittenNumber number)
{
    std::uint64_t least = 1; // that needs so many digits
    for (std::size_t i = 1; i < number.digits(); ++i)
        least *= 10;
    return {static_cast<std::uint32_t>(number.value()), static_cast<std::uint8_t>(number.digits()),
            number.digits() > 1 && number.value() < least};
}

/// What is read as another pattern than it was written, and what no pattern holds, is no sequence: names with
/// "%04d." in front of the number, or with lines in them.
bool canBeRead(const ImageSequenceFormat& format)
{
    const std::string text = format.toString();
    return text.find('\n', text.rfind('/') + 1) == std::string::npos &&
           ImageSequenceFormat::parse(text) == format;
}

void appendSequences(const std::string& before, const std::string& behind, std::vector<PictureNumber> numbers,
                     std::vector<ImageSequenceInfo>& result)
{
    for (const NumberSeries& series : splitByWidth(std::move(numbers))) {
        ImageSequenceFormat format(before, series.width, behind);
        if (series.numbers.size() < 2 || !canBeRead(format))
            continue;
        std::string name = format.toString();
        ImageSequenceInfo info{
            std::move(name), std::move(format), series.numbers.front(), series.numbers.back(), {}};
        for (std::size_t i = 1; i < series.numbers.size(); ++i) {
            if (series.numbers[i] != series.numbers[i - 1] + 1)
                info.missing.push_back({series.numbers[i - 1] + 1u, series.numbers[i] - 1u});
        }
        result.push_back(std::move(info));
    }
}

} // namespace

PictureGroup::PictureGroup(std::string_view path, std::size_t name, const std::vector<NumberField>& fields)
    : m_path(path)
    , m_name(name)
    , m_fields(fields)
    , m_places(findNumberPlaces(path.substr(name), fields))
{
}

void PictureGroup::add(std::string_view path, const std::vector<NumberField>& fields)
{
    for (const NumberField& field : fields)
        m_numbers.emplace_back(path.substr(m_name + field.start, field.length));
}

PictureGroup::Numbers PictureGroup::numbersOf(std::size_t picture) const
{
    return Numbers(m_numbers).subspan(picture * m_fields.size(), m_fields.size());
}

void PictureGroup::findSequences(std::vector<ImageSequenceInfo>& result) const
{
    if (count() < 2)
        return;
    const std::vector<Field> fields = lookAtFields();
    const bool othersDiffer = std::ranges::count_if(fields, &Field::differs) > 1;
    const std::size_t before = result.size();
    for (const std::size_t field : choices(fields)) {
        findSequences(field, othersDiffer, result);
        if (result.size() > before)
            return;
    }
}

std::vector<PictureGroup::Field> PictureGroup::lookAtFields() const
{
    std::vector<Field> fields(m_fields.size());
    for (std::size_t picture = 0; picture < count(); ++picture) {
        const Numbers numbers = numbersOf(picture);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            Field& field = fields[i];
            field.longest = std::max(field.longest, numbers[i].digits());
            field.differs = field.differs || numbers[i] != m_numbers[i];
            field.counts = field.counts || mayCountPictures(m_places, numbers, i);
        }
    }
    return fields;
}

/// The fields in which pictures may be counted, the likeliest first: the last, unless it tells layers apart.
std::vector<std::size_t> PictureGroup::choices(const std::vector<Field>& fields) const
{
    std::vector<std::size_t> order;
    for (std::size_t i = fields.size(); i-- > 0;) {
        if (fields[i].differs && fields[i].counts)
            order.push_back(i);
    }
    if (order.size() > 1 && isLayerOf(fields, order[1], order[0]))
        std::swap(order[0], order[1]);
    return order;
}

/// "shot.0001.2.png": one digit behind a number that counts on and takes more values.
bool PictureGroup::isLayerOf(const std::vector<Field>& fields, std::size_t left, std::size_t right) const
{
    if (fields[right].longest > 1 || fields[left].longest < 3)
        return false;
    std::unordered_set<std::uint64_t> layers;
    std::unordered_set<std::uint64_t> pictures;
    for (std::size_t picture = 0; picture < count(); ++picture) {
        layers.insert(numbersOf(picture)[right].value());
        pictures.insert(numbersOf(picture)[left].value());
    }
    const auto [least, most] = std::ranges::minmax(pictures);
    return pictures.size() > layers.size() && most - least < 2 * pictures.size();
}

void PictureGroup::findSequences(std::size_t field, bool othersDiffer,
                                 std::vector<ImageSequenceInfo>& result) const
{
    struct Counted
    {
        std::size_t first = 0; // any picture of them
        std::vector<PictureNumber> numbers;
    };
    std::unordered_map<std::string, Counted> byRest;
    std::string rest;
    for (std::size_t picture = 0; picture < count(); ++picture) {
        const Numbers numbers = numbersOf(picture);
        if (!mayCountPictures(m_places, numbers, field))
            continue;
        if (othersDiffer) {
            rest.assign(reinterpret_cast<const char*>(numbers.data()), numbers.size_bytes());
            rest.replace(field * sizeof(WrittenNumber), sizeof(WrittenNumber), sizeof(WrittenNumber), '\0');
        }
        Counted& counted = byRest[rest];
        counted.first = picture;
        counted.numbers.push_back(pictureNumber(numbers[field]));
    }
    for (auto& [key, counted] : byRest) {
        if (counted.numbers.size() < 2)
            continue;
        const Numbers numbers = numbersOf(counted.first);
        appendSequences(std::string(m_path.substr(0, m_name)) + textBetween(numbers, 0, field),
                        textBetween(numbers, field + 1, m_fields.size()), std::move(counted.numbers), result);
    }
}

/// The name from behind the field before `from` to the field `to`, or to its end, with these numbers in it.
std::string PictureGroup::textBetween(Numbers numbers, std::size_t from, std::size_t to) const
{
    const std::string_view name = m_path.substr(m_name);
    std::string text;
    std::size_t at = from > 0 ? m_fields[from - 1].end() : 0;
    for (std::size_t i = from; i < to; ++i) {
        text.append(name.substr(at, m_fields[i].start - at)).append(numbers[i].text());
        at = m_fields[i].end();
    }
    const std::size_t end = to < m_fields.size() ? m_fields[to].start : name.size();
    return text.append(name.substr(at, end - at));
}

} // namespace vantrel
