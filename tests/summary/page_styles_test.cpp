// What the stylesheet's text fixes; how it looks is seen in a browser.

#include <cctype>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "summary/page_model.h"
#include "support/temp_folder.h"

namespace {

struct Property
{
    const char* name;
    const char* light;
    const char* dark; // null: not redefined
};

const std::vector<Property> PALETTE = {
    {"--bg", "#eef1f4", "#0e1318"},
    {"--surface", "#ffffff", "#161d24"},
    {"--surface-sunken", "#f4f6f8", "#10151a"},
    {"--ink", "#131a22", "#e7edf2"},
    {"--ink-soft", "#55636f", "#9aa8b3"},
    {"--muted", "#8b96a1", "#5c6b78"},
    {"--line", "#e1e6eb", "#232c35"},
    {"--line-strong", "#cbd3da", "#303b45"},
    {"--accent", "#0b7285", "#35b6c4"},
    {"--accent-ink", "#ffffff", "#051417"},
    {"--accent-soft", "#e1f3f4", "#12292c"},
    {"--logo-accent", "#2952cc", "#6f92f2"},
    {"--ref", "#FF7F0E", nullptr},
    {"--dut", "#1F77B4", nullptr},
    {"--pass", "#2E7D32", "#6fbf73"},
    {"--pass-soft", "#e6f2e6", "#142a17"},
    {"--pass-line", "#b9d8b8", "#2b4a2e"},
    {"--fail", "#C62828", "#e2857b"},
    {"--fail-soft", "#fbe8e6", "#2c1815"},
    {"--fail-line", "#edb6ae", "#55302a"},
    {"--gate", "#a5610f", "#e3a25c"},
    {"--gate-bg", "#f6e9d7", "#2a2114"},
    {"--gauge-mid", "#e8c93a", "#e8c93a"},
    {"--gauge-good", "#b08a10", "#d9b23c"},
    {"--gauge-poor-soft", "#e8a29c", "#7a453f"},
    {"--gauge-fair-soft", "#e8c896", "#7a5f3a"},
    {"--gauge-mid-soft", "#e8dc96", "#7a7040"},
    {"--gauge-good-soft", "#a8cfa0", "#4a6b4a"},
    {"--ref-trace", "var(--ref)", nullptr},
    {"--dut-trace", "var(--dut)", nullptr},
    {"--shadow", "0 1px 2px rgba(20, 30, 40, 0.06), 0 6px 20px -8px rgba(20, 30, 40, 0.12)",
     "0 1px 2px rgba(0,0,0,0.4), 0 8px 24px -10px rgba(0,0,0,0.5)"},
    {"--font-display",
     "\"Avenir Next\", \"SF Pro Rounded\", \"Segoe UI Semibold\", ui-rounded, -apple-system, "
     "sans-serif",
     nullptr},
    {"--font-body", "-apple-system, BlinkMacSystemFont, \"Segoe UI\", system-ui, sans-serif",
     nullptr},
    {"--font-data", "ui-monospace, \"SF Mono\", \"Cascadia Mono\", Menlo, monospace", nullptr},
};

using Declarations = std::vector<std::pair<std::string, std::string>>;

std::string without_comments(std::string text)
{
    for (std::size_t at = text.find("/*"); at != text.npos; at = text.find("/*", at)) {
        text.erase(at, text.find("*/", at) + 2 - at);
    }
    return text;
}

// The stylesheet without comments, every run of white space one blank.
std::string stylesheet()
{
    const std::string text =
        without_comments(read_file(FTHSUMMARY_SOURCE_FOLDER "/src/summary/page_styles.css"));
    std::string result;
    for (const char byte : text) {
        const bool is_space = byte == ' ' || byte == '\n' || byte == '\t';
        if (!is_space) {
            result += byte;
        } else if (!result.empty() && result.back() != ' ') {
            result += ' ';
        }
    }
    return result;
}

// What stands between the braces behind the first rule with this start.
std::string block(const std::string& css, const std::string& start)
{
    const std::size_t at = css.find(start + " {");
    if (at == css.npos) {
        ADD_FAILURE() << "no block " << start;
        return "";
    }
    const std::size_t first = at + start.size() + 2;
    std::size_t end = first;
    for (int depth = 1; depth > 0 && end < css.size(); ++end) {
        depth += css[end] == '{' ? 1 : 0;
        depth -= css[end] == '}' ? 1 : 0;
    }
    return css.substr(first, end - 1 - first);
}

Declarations custom_properties(const std::string& text)
{
    Declarations found;
    for (std::size_t at = text.find(" --"); at != text.npos; at = text.find(" --", at)) {
        ++at;
        const std::size_t colon = text.find(": ", at);
        const std::size_t end = text.find(';', colon);
        found.emplace_back(text.substr(at, colon - at), text.substr(colon + 2, end - colon - 2));
    }
    return found;
}

Declarations palette(const char* Property::*theme)
{
    Declarations expected;
    for (const Property& property : PALETTE) {
        if (property.*theme != nullptr) {
            expected.emplace_back(property.name, property.*theme);
        }
    }
    return expected;
}

std::string component_rules(const std::string& css)
{
    const std::size_t start = css.find('}', css.find("::selection")) + 1;
    return css.substr(start, css.rfind("@media (prefers-reduced-motion: reduce)") - start);
}

bool continues_name(char byte)
{
    return std::isalnum(static_cast<unsigned char>(byte)) != 0 || byte == '-' || byte == '_';
}

bool has_selector(const std::string& css, const std::string& selector)
{
    for (std::size_t at = css.find(selector); at != css.npos; at = css.find(selector, at + 1)) {
        if (!continues_name(css[at + selector.size()])) {
            return true;
        }
    }
    return false;
}

} // namespace

TEST(PageStyles, LightThemeSetsThePaletteShadowAndFontsOnTheRoot)
{
    EXPECT_EQ(custom_properties(block(stylesheet(), ":root")), palette(&Property::light));
}

TEST(PageStyles, ExplicitDarkThemeOverridesThePalette)
{
    EXPECT_EQ(custom_properties(block(stylesheet(), ":root[data-theme=\"dark\"]")),
              palette(&Property::dark));
}

TEST(PageStyles, SystemDarkSchemeRepeatsTheOverridesWordForWord)
{
    const std::string css = stylesheet();
    const std::string media = block(css, "@media (prefers-color-scheme: dark)");
    EXPECT_EQ(block(media, ":root:not([data-theme=\"light\"])"),
              block(css, ":root[data-theme=\"dark\"]"));
}

TEST(PageStyles, CustomPropertiesAreSetInTheThreeThemeBlocksOnly)
{
    const std::string css = stylesheet();
    const std::size_t rest = css.find("* { box-sizing");
    ASSERT_NE(rest, css.npos);
    EXPECT_TRUE(custom_properties(css.substr(rest)).empty());
    EXPECT_EQ(custom_properties(css).size(), 34U + 27U + 27U);
}

TEST(PageStyles, SixBlocksStandInTheirOrder)
{
    const std::string css = stylesheet();
    std::size_t last = 0;
    for (const char* start :
         {":root { --bg", ":root[data-theme=\"dark\"] {", "@media (prefers-color-scheme: dark) {",
          "* { box-sizing: border-box; }", ".dash {", "footer {",
          "@media (prefers-reduced-motion: reduce) {"}) {
        const std::size_t at = css.find(start);
        ASSERT_NE(at, css.npos) << start;
        EXPECT_GE(at, last) << start;
        last = at;
    }
    EXPECT_TRUE(css.starts_with(":root { --bg"));
}

TEST(PageStyles, ReducedMotionComesLastAndSwitchesMovementOff)
{
    const std::string css = stylesheet();
    const std::string motion = block(css, "@media (prefers-reduced-motion: reduce)");
    EXPECT_TRUE(css.ends_with(motion + "} "));
    EXPECT_EQ(count_of("animation: none !important;", motion), 1);
    EXPECT_EQ(count_of("transition: none !important;", motion), 1);
}

TEST(PageStyles, GlobalRulesSetBoxesBackgroundAndSelection)
{
    const std::string css = stylesheet();
    EXPECT_EQ(count_of("* { box-sizing: border-box; }", css), 1);
    EXPECT_EQ(count_of("background: var(--bg);", block(css, "body")), 1);
    const std::string selection = block(css, "::selection");
    EXPECT_EQ(count_of("background: var(--accent-soft);", selection), 1);
    EXPECT_EQ(count_of(" color: var(--ink);", selection), 1);
}

TEST(PageStyles, ComponentsTakeTheirColoursThroughCustomProperties)
{
    const std::string rules = component_rules(stylesheet());
    ASSERT_GT(rules.size(), 5000U);
    EXPECT_EQ(count_of("rgb", rules), count_of("color: rgba(255, 255, 255, 0.75);", rules) +
                                          count_of("color: rgba(255,255,255,0.75);", rules));
    EXPECT_EQ(count_of("rgba", block(rules, ".kpi.verdict .k")), 1);
    EXPECT_EQ(count_of("#fff;", block(rules, ".kpi.verdict .v")), 1);
    EXPECT_EQ(count_of("#", rules), 1);
    for (const char* function : {"hsl", "hwb(", "lab(", "lch(", "color-mix"}) {
        EXPECT_EQ(count_of(function, rules), 0) << function;
    }
}

TEST(PageStyles, EveryClassOfTheSummaryPageHasARule)
{
    const std::string rules = component_rules(stylesheet());
    for (const char* selector : {".dash",
                                 ".topbar",
                                 ".topbar .brand",
                                 ".glyph",
                                 ".name",
                                 ".topbar .meta",
                                 ".meta b",
                                 ".topbar .right",
                                 ".theme-toggle",
                                 ".theme-toggle:hover",
                                 ".theme-toggle:focus-visible",
                                 ".signal-row",
                                 ".signal-id",
                                 ".signal-id.single",
                                 ".tag",
                                 ".fname",
                                 ".kpi-grid",
                                 ".kpi",
                                 ".kpi .k",
                                 ".kpi .v",
                                 ".kpi.verdict",
                                 ".kpi.verdict.ok",
                                 ".card",
                                 ".card-head",
                                 ".htext",
                                 "h3",
                                 ".sub",
                                 ".card-body",
                                 ".compare-table-title",
                                 ".badge",
                                 ".badge.pass",
                                 ".badge.fail",
                                 "table.dt",
                                 "table.dt.dt-numbered",
                                 ".overflow-x",
                                 ".dt-pager",
                                 ".dt-pager button",
                                 ".dt-pager-status",
                                 "footer",
                                 ".footer-row-top",
                                 "footer b"}) {
        EXPECT_TRUE(has_selector(rules, selector)) << selector;
    }
}

TEST(PageStyles, EveryClassOfTheAnalyzersOwnReportsHasARule)
{
    const std::string rules = component_rules(stylesheet());
    for (const char* selector : {".signal-id.dut",
                                 ".signal-meta",
                                 ".kpi .v small",
                                 ".kpi-sub",
                                 ".kpi-note",
                                 ".nav-tabs",
                                 "a[data-fail]",
                                 ".badge.info",
                                 ".card-body > p.desc",
                                 ".tile-row",
                                 ".tile",
                                 ".tile .k",
                                 ".tile .v",
                                 ".tile .v.pass",
                                 ".tile .v.fail",
                                 ".tile .pct",
                                 ".tile .v-sub",
                                 ".tile .delta",
                                 ".card-row-gap",
                                 ".tile-wide",
                                 ".diffrate-bar",
                                 ".diffrate-bar-track",
                                 ".diffrate-bar-fill",
                                 ".diffrate-bar-label",
                                 ".compare-table-wrap",
                                 ".compare-table",
                                 ".loudness-delta-label",
                                 ".align-gauge",
                                 ".align-gauge-track",
                                 ".align-gauge-pointer",
                                 ".align-gauge-value",
                                 ".align-gauge-num",
                                 ".align-gauge-word",
                                 ".align-gauge-word.excellent",
                                 ".align-gauge-word.good",
                                 ".align-gauge-word.fair",
                                 ".align-gauge-word.poor",
                                 ".align-gauge-caption",
                                 ".spectral-snap-tabs",
                                 ".snap-tab",
                                 ".snap-tab.active",
                                 ".snap-tab-dot",
                                 ".snap-tab-db",
                                 ".spectral-snap-panels .snap-panel[hidden]",
                                 ".spectral-rollup",
                                 ".channel-gallery-heading",
                                 ".scope",
                                 ".scope-head",
                                 ".zoom-toolbar",
                                 ".zoom-hint",
                                 ".zoom-reset",
                                 ".trace-toggle",
                                 ".trace-toggle.active",
                                 ".trace-toggle.ref-active",
                                 ".trace-toggle.dut-active",
                                 ".zoom-frame",
                                 ".zoom-box",
                                 ".legend-row",
                                 ".chart-note",
                                 "footer .footer-row-tester"}) {
        EXPECT_TRUE(has_selector(rules, selector)) << selector;
    }
}
