#pragma once

#include "tarn/media/imagesequenceinfo.h"
#include "tarn/media/numberfields.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace vantrel {

/// Pictures of one folder whose names are the same but for the numbers in them. Of each it keeps the numbers,
/// of the first a view of the path.
class PictureGroup
{
public:
    /// name: where the file's name begins in the path; fields: those of the name.
    PictureGroup(std::string_view path, std::size_t name, const std::vector<NumberField>& fields);

    /// A path that is the same but for its numbers, and its fields.
    void add(std::string_view path, const std::vector<NumberField>& fields);
    /// Appends the sequences, in no order. All are counted in the same field: that which runs.
    void findSequences(std::vector<ImageSequenceInfo>& result) const;

private:
    /// What is known of one field over all pictures.
    struct Field
    {
        bool differs = false;
        bool counts = false; // pictures may be counted in it
        std::size_t longest = 0;
    };
    using Numbers = std::span<const WrittenNumber>; // of one picture
    std::size_t count() const { return m_numbers.size() / m_fields.size(); }
    Numbers numbersOf(std::size_t picture) const;
    std::vector<Field> lookAtFields() const;
    std::vector<std::size_t> choices(const std::vector<Field>& fields) const;
    bool isLayerOf(const std::vector<Field>& fields, std::size_t left, std::size_t right) const;
    void findSequences(std::size_t field, bool othersDiffer, std::vector<ImageSequenceInfo>& result) const;
    std::string textBetween(Numbers numbers, std::size_t from, std::size_t to) const;

    std::string_view m_path;
    std::size_t m_name;
    std::vector<NumberField> m_fields; // of the first picture
    std::vector<NumberPlace> m_places;
    std::vector<WrittenNumber> m_numbers; // one for each field, picture after picture
};

} // namespace vantrel
