#pragma once

#include <sdk/model.h>

#include <array>

/// The catalogue of instrument models: one namespace per family, each with its models and the
/// list `all` of them, in catalogue order.
namespace sdk::models {

/// Stands for every model.
inline constexpr Model any{"*"};

namespace pell {
inline constexpr Model pell101{"Pell 101"};
inline constexpr Model pell102{"Pell 102"};
inline constexpr Model pell103{"Pell 103"};
inline constexpr Model pell104{"Pell 104"};
inline constexpr Model pell105{"Pell 105"};
inline constexpr Model pell106{"Pell 106"};
inline constexpr Model pell107{"Pell 107"};
inline constexpr Model pell108{"Pell 108"};
inline constexpr Model pell109{"Pell 109"};
inline constexpr Model pell110{"Pell 110"};
inline constexpr Model pell111{"Pell 111"};
inline constexpr Model pell112{"Pell 112"};
inline constexpr Model pell113{"Pell 113"};
inline constexpr Model pell114{"Pell 114"};
inline constexpr Model pell115{"Pell 115"};
inline constexpr std::array all{pell101, pell102, pell103, pell104, pell105, pell106, pell107, pell108,
                                pell109, pell110, pell111, pell112, pell113, pell114, pell115};
} // namespace pell

namespace zinnia {
inline constexpr Model zinnia201{"Zinnia 201"};
inline constexpr Model zinnia202{"Zinnia 202"};
inline constexpr Model zinnia203{"Zinnia 203"};
inline constexpr Model zinnia204{"Zinnia 204"};
inline constexpr Model zinnia205{"Zinnia 205"};
inline constexpr Model zinnia206{"Zinnia 206"};
inline constexpr Model zinnia207{"Zinnia 207"};
inline constexpr Model zinnia208{"Zinnia 208"};
inline constexpr std::array all{zinnia201, zinnia202, zinnia203, zinnia204, zinnia205, zinnia206, zinnia207, zinnia208};
} // namespace zinnia

namespace marl {
inline constexpr Model marl301{"Marl 301"};
inline constexpr Model marl302{"Marl 302"};
inline constexpr Model marl303{"Marl 303"};
inline constexpr Model marl304{"Marl 304"};
inline constexpr std::array all{marl301, marl302, marl303, marl304};
} // namespace marl

namespace tove {
inline constexpr Model tove401{"Tove 401"};
inline constexpr Model tove402{"Tove 402"};
inline constexpr Model tove403{"Tove 403"};
inline constexpr Model tove404{"Tove 404"};
inline constexpr Model tove405{"Tove 405"};
inline constexpr Model tove406{"Tove 406"};
inline constexpr Model tove407{"Tove 407"};
inline constexpr Model tove408{"Tove 408"};
inline constexpr Model tove409{"Tove 409"};
inline constexpr std::array all{tove401, tove402, tove403, tove404, tove405, tove406, tove407, tove408, tove409};
} // namespace tove

namespace wisp {
inline constexpr Model wisp501{"Wisp 501"};
inline constexpr Model wisp502{"Wisp 502"};
inline constexpr std::array all{wisp501, wisp502};
} // namespace wisp

namespace glint {
inline constexpr Model glint601{"Glint 601"};
inline constexpr Model glint602{"Glint 602"};
inline constexpr Model glint603{"Glint 603"};
inline constexpr Model glint604{"Glint 604"};
inline constexpr Model glint605{"Glint 605"};
inline constexpr Model glint606{"Glint 606"};
inline constexpr Model glint607{"Glint 607"};
inline constexpr std::array all{glint601, glint602, glint603, glint604, glint605, glint606, glint607};
} // namespace glint

namespace brae {
inline constexpr Model brae701{"Brae 701"};
inline constexpr Model brae702{"Brae 702"};
inline constexpr std::array all{brae701, brae702};
} // namespace brae

namespace vell {
inline constexpr Model vell801{"Vell 801"};
inline constexpr Model vell802{"Vell 802"};
inline constexpr Model vell803{"Vell 803"};
inline constexpr Model vell804{"Vell 804"};
inline constexpr Model vell805{"Vell 805"};
inline constexpr Model vell806{"Vell 806"};
inline constexpr Model vell807{"Vell 807"};
inline constexpr Model vell808{"Vell 808"};
inline constexpr Model vell809{"Vell 809"};
inline constexpr std::array all{vell801, vell802, vell803, vell804, vell805, vell806, vell807, vell808, vell809};
} // namespace vell

namespace multiport::lum {
inline constexpr Model lum901{"Lum Multiport 901"};
inline constexpr Model lum902{"Lum Multiport 902"};
inline constexpr Model lum903{"Lum Multiport 903"};
inline constexpr Model lum904{"Lum Multiport 904"};
inline constexpr Model lum905{"Lum Multiport 905"};
inline constexpr Model lum906{"Lum Multiport 906"};
inline constexpr Model lum907{"Lum Multiport 907"};
inline constexpr std::array all{lum901, lum902, lum903, lum904, lum905, lum906, lum907};
} // namespace multiport::lum

namespace multiport::common {
inline constexpr Model common1001{"Multiport 1001"};
inline constexpr Model common1002{"Multiport 1002"};
inline constexpr Model common1003{"Multiport 1003"};
inline constexpr Model common1004{"Multiport 1004"};
inline constexpr Model common1005{"Multiport 1005"};
inline constexpr Model common1006{"Multiport 1006"};
inline constexpr Model common1007{"Multiport 1007"};
inline constexpr std::array all{common1001, common1002, common1003, common1004, common1005, common1006, common1007};
} // namespace multiport::common

} // namespace sdk::models
