#pragma once

#include <functional>
#include <string_view>

namespace zqxml::tool {

/// Writes the whole catalogue as one JSON document, piece by piece:
///
///   {"subsystems":[{"slot":1,"name":"ZQGui","old":true,"records":285,"classes":[
///     {"index":203,"name":"SaveAlert","id":32,"elements":16,"enum":false,
///      "fields":[{"name":"loginName","type":8,"hash":8585620,"memNum":2,"index":2,"locz":1962934454,
///                 "refs":[],"annotation":null}],
///      "defaults":[]}]}]}
///
/// `refs` is a list of [slot, class index], `annotation` the record in lower-case hexadecimal or null,
/// `defaults` a list of [memNum, text]. Records without a name are left out.
void writeCatalogueJson(const std::function<void(std::string_view)>& write);

}  // namespace zqxml::tool
