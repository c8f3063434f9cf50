#include "summary/page_fragments.h"

#include "embedded/page_styles.h"
#include "embedded/pager_script.h"
#include "embedded/theme_script.h"
#include "embedded/theme_toggle.h"

bool append_page_styles(TextBuffer& buffer)
{
    return text_buffer_append(buffer, PAGE_STYLES);
}

bool append_theme_toggle(TextBuffer& buffer)
{
    return text_buffer_append(buffer, THEME_TOGGLE);
}

bool append_theme_script(TextBuffer& buffer)
{
    return text_buffer_append(buffer, THEME_SCRIPT);
}

bool append_pager_script(TextBuffer& buffer)
{
    return text_buffer_append(buffer, PAGER_SCRIPT);
}
