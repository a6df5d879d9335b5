# Makes a page of HTML: a head, the text of SOURCE with an anchor at each heading, and a foot.
execute_process(COMMAND ${CMARK} --extension table ${SOURCE}
    OUTPUT_VARIABLE text COMMAND_ERROR_IS_FATAL ANY)

# Anchors as the links of the text have them: in small letters, with "-" for what is between the words.
string(REGEX MATCHALL "<h[1-6]>[^<]*</h[1-6]>" headings "${text}")
foreach(heading ${headings})
    string(REGEX REPLACE "<h([1-6])>(.*)</h[1-6]>" "\\1" level "${heading}")
    string(REGEX REPLACE "<h([1-6])>(.*)</h[1-6]>" "\\2" words "${heading}")
    string(TOLOWER "${words}" anchor)
    string(REGEX REPLACE "[^a-z0-9 -]" "" anchor "${anchor}")
    string(REPLACE " " "-" anchor "${anchor}")
    string(REPLACE "${heading}" "<h${level} id=\"${anchor}\">${words}</h${level}>" text "${text}")
endforeach()

# The program's own help lies beside the page.
string(REPLACE "../resources/help.html" "help.html" text "${text}")
# So does the table of the faults.
string(REPLACE "href=\"faults.md\"" "href=\"faults.html\"" text "${text}")
# So do its pictures.
string(REPLACE "src=\"manual/" "src=\"" text "${text}")

file(READ ${HEAD} head)
file(WRITE ${TARGET} "${head}${text}</body>\n</html>\n")
