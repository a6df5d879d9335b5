#pragma once

/**
 * Who distributes the program, and where to turn to.
 *
 * TO BE FILLED IN before the program is given away: every text in brackets and both addresses.
 * The link in resources/help.html leads to the same page.
 */
namespace Distributor
{
constexpr const char* copyright = "Copyright \u00a9 2020 [name of the distributor]";
constexpr const char* license_note =
    "This program contains code under the GNU General Public License (GPL); see the enclosed file "
    "license.txt. To ask for the source code, write to [%1].";
constexpr const char* mail_address = "source@distributor.example";
constexpr const char* product_page =
    "https://www.distributor.example/product-info/kestrometer.html";
}  // namespace Distributor
