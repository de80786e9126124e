// Where the words of a prompt stand in it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

/// Each word stands behind the last bracket and behind the word before it. Those from the first one on that is not
/// there are left out.
inline std::vector<std::size_t> wordPlaces(const std::wstring& prompt, const std::vector<std::wstring>& words) {
    std::vector<std::size_t> places;
    std::size_t from = prompt.rfind(L'[');
    for (const std::wstring& word : words) {
        from = from == prompt.npos ? from : prompt.find(word, from);
        if (from == prompt.npos) break;
        places.push_back(from);
        from += word.size();
    }
    return places;
}

}  // namespace host
