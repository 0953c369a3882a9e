// Tables that an operator reads in: whatever the bytes and wherever they are cut, the records are the same,
// within the limits, and what is written as CSV is read as it was.
#include "util/csvreader.cpp"

#include <cstdint>
#include <cstdlib>

using namespace vantrel;

namespace {

std::vector<CsvReader::Record> read(std::string_view text, std::size_t piece)
{
    std::vector<CsvReader::Record> records;
    CsvReader reader([&](CsvReader::Record&& record) { records.push_back(std::move(record)); });
    for (std::size_t at = 0; at < text.size(); at += piece)
        reader.feed(text.substr(at, piece));
    reader.finish();
    return records;
}

std::string written(const std::vector<CsvReader::Record>& records)
{
    std::string text;
    for (const CsvReader::Record& record : records) {
        for (std::size_t i = 0; i < record.fields.size(); ++i) {
            text += i == 0 ? "\"" : ",\"";
            for (const char c : record.fields[i])
                text += c == '"' ? std::string("\"\"") : std::string(1, c);
            text += '"';
        }
        if (!record.fields.empty())
            text += "\r\n";
    }
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto whole = read(text, size + 1);
    const auto bytewise = read(text, 1);
    if (whole.size() != bytewise.size())
        std::abort();
    int line = 0;
    std::vector<std::vector<std::string>> sound;
    for (std::size_t i = 0; i < whole.size(); ++i) {
        const CsvReader::Record& record = whole[i];
        if (record.fields != bytewise[i].fields || record.fault != bytewise[i].fault || record.line <= line ||
            record.fields.empty() == record.fault.empty() || record.fields.size() > CsvReader::maxFields)
            std::abort();
        line = record.line;
        for (const std::string& field : record.fields) {
            if (field.size() > CsvReader::maxField)
                std::abort();
        }
        if (record.fault.empty())
            sound.push_back(record.fields);
    }
    const auto again = read(written(whole), 7);
    if (again.size() != sound.size())
        std::abort();
    for (std::size_t i = 0; i < sound.size(); ++i) {
        if (again[i].fields != sound[i])
            std::abort();
    }
    return 0;
}
