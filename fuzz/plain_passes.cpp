#include "plain_passes.h"

#include <unordered_map>

namespace zelmora::fuzz {
namespace {

std::u16string lineBreak(OrvLineBreak kind) {
    switch (kind) {
    case OrvLineBreak::lf:
        return u"\n";
    case OrvLineBreak::cr:
        return u"\r";
    case OrvLineBreak::crlf:
        return u"\r\n";
    default:
        return u"\u2028";
    }
}

/// What is replaced and by what, pairs of a letter and its mark too.
std::unordered_map<std::u16string, std::u16string> katakana() {
    std::unordered_map<std::u16string, std::u16string> forms;
    const auto add = [&](const std::u16string& half, const std::u16string& full, char16_t mark) {
        for (size_t i = 0; i < half.size(); ++i)
            forms[mark ? std::u16string{half[i], mark} : half.substr(i, 1)] = full.substr(i, 1);
    };
    add(u"｡｢｣､･ｦｧｨｩｪｫｬｭｮｯｰｱｲｳｴｵｶｷｸｹｺｻｼｽｾｿﾀﾁﾂﾃﾄﾅﾆﾇﾈﾉﾊﾋﾌﾍﾎﾏﾐﾑﾒﾓﾔﾕﾖﾗﾘﾙﾚﾛﾜﾝ",
        u"。「」、・ヲァィゥェォャュョッーアイウエオカキクケコサシスセソタチツテトナニヌネノ"
        u"ハヒフヘホマミムメモヤユヨラリルレロワン",
        0);
    add(u"ｳｶｷｸｹｺｻｼｽｾｿﾀﾁﾂﾃﾄﾊﾋﾌﾍﾎ", u"ヴガギグゲゴザジズゼゾダヂヅデドバビブベボ", u'ﾞ');
    add(u"ﾊﾋﾌﾍﾎ", u"パピプペポ", u'ﾟ');
    return forms;
}

} // namespace

OrvLineBreak plainLineBreakType(const std::u16string& text) {
    for (size_t i = 0; i < text.size(); ++i) {
        for (const auto kind :
             {OrvLineBreak::crlf, OrvLineBreak::lf, OrvLineBreak::cr, OrvLineBreak::ls}) {
            if (text.compare(i, lineBreak(kind).size(), lineBreak(kind)) == 0)
                return kind;
        }
    }
    return OrvLineBreak::none;
}

std::u16string plainLineBreaks(const std::u16string& text, OrvLineBreak from, OrvLineBreak to) {
    const std::u16string before = lineBreak(from);
    const std::u16string after = lineBreak(to);
    std::u16string converted;
    size_t at = 0;
    for (size_t found; (found = text.find(before, at)) != text.npos; at = found + before.size())
        converted.append(text, at, found - at).append(after);
    return converted.append(text, at);
}

std::u16string plainFullWidthKatakana(const std::u16string& text) {
    static const auto forms = katakana();
    std::u16string converted;
    for (size_t i = 0; i < text.size();) {
        auto form = forms.find(text.substr(i, 2));
        if (form == forms.end())
            form = forms.find(text.substr(i, 1));
        converted += form == forms.end() ? text.substr(i, 1) : form->second;
        i += form == forms.end() ? 1 : form->first.size();
    }
    return converted;
}

} // namespace zelmora::fuzz
