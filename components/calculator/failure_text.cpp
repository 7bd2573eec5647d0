#include "components/calculator/failure_text.h"

#include <algorithm>
#include <array>

namespace {

struct Texts {
    Code code;
    const char16_t* german;
    const char16_t* english;
};

constexpr auto texts = std::to_array<Texts>({
    {Code::success, u"Kein Fehler", u"no error"},
    {Code::syntax, u"Syntaxfehler", u"syntax error"},
    {Code::empty, u"Der Text ist leer", u"the text is empty"},
    {Code::unknown_name, u"Unbekannter Name", u"unknown name"},
    {Code::bad_option, u"Ung\u00FCltige Option", u"invalid option"},
    {Code::argument_count, u"Falsche Anzahl von Argumenten", u"wrong number of arguments"},
    {Code::division_by_zero, u"Division durch null", u"division by zero"},
    {Code::domain, u"Argument au\u00DFerhalb des Definitionsbereichs", u"argument outside the domain"},
    {Code::overflow, u"Zahl zu gro\u00DF", u"number too large"},
    {Code::too_complex, u"Ausdruck zu komplex", u"expression too complex"},
    {Code::parenthesis, u"Klammer ohne Gegenst\u00FCck", u"unmatched parenthesis"},
    {Code::assignment, u"Zuweisung nicht erlaubt", u"assignment not allowed"},
    {Code::not_finite, u"Keine endliche Zahl", u"not a finite number"},
});

const Texts* find(std::int32_t number) {
    const auto* found = std::ranges::find(texts, static_cast<Code>(number), &Texts::code);
    return found == texts.end() ? nullptr : found;
}

} // namespace

bool is_code(std::int32_t number) {
    return find(number) != nullptr;
}

std::u16string failure_text(const Failure& failure, bool german) {
    const Texts* row = find(static_cast<std::int32_t>(failure.code));
    std::u16string text = german ? row->german : row->english;
    if (failure.position > 0) {
        text += german ? u" an Stelle " : u" at position ";
        text += widened(std::to_string(failure.position));
    }
    return text;
}
