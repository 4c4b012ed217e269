# Single-line changes to code, as candidates: for each line of code and each operator that applies to it one line
#   FILE <tab> NUMBER <tab> OPERATOR <tab> OLD <tab> NEW
# A candidate is the same as long as its line is, wherever that stands in the file, so that a choice by its text lasts.
function kandidaat(naam, van, naar,  i, nieuw) {
    i = index($0, van)
    if (i == 0)
        return
    nieuw = substr($0, 1, i - 1) naar substr($0, i + length(van))
    print FILENAME "\t" FNR "\t" naam "\t" $0 "\t" nieuw
}
FNR == 1 { in_functie = 0 }
/^}/ { in_functie = 0 }
/^[a-zA-Z].*\{$/ && !/^(namespace|struct|class|enum|union)/ { in_functie = 1; next }
!in_functie || /^ *\/\// || /\t/ || /static_assert|constexpr|assert\(|TEKST\(|^ *case |^ *default:/ { next }
{
    sub(/ *\/\/ .*/, "")
    kandidaat("equal", " == ", " != ")
    kandidaat("unequal", " != ", " == ")
    kandidaat("less", " < ", " <= ")
    kandidaat("less-or-equal", " <= ", " < ")
    kandidaat("greater", " > ", " >= ")
    kandidaat("greater-or-equal", " >= ", " > ")
    kandidaat("and", " && ", " || ")
    kandidaat("or", " || ", " && ")
    kandidaat("plus", " + ", " - ")
    kandidaat("minus", " - ", " + ")
    kandidaat("plus-one", " + 1", "")
    kandidaat("minus-one", " - 1", "")
    kandidaat("not", "(!", "(")
    kandidaat("true", "return true;", "return false;")
    kandidaat("false", "return false;", "return true;")
    kandidaat("zero", "return 0;", "return 1;")
    kandidaat("one", "return 1;", "return 0;")
    kandidaat("add", " += ", " -= ")
}
# A statement that is a call, or an assignment that isn't a declaration: gone.
/^ +[a-zA-Z_][a-zA-Z0-9_:.>-]*\(.*\);$/ && !/return|throw/ { print FILENAME "\t" FNR "\tcall\t" $0 "\t" "    ;" }
/^ +[a-zA-Z_][a-zA-Z0-9_.>\[\]-]* [|&+-]?= .*;$/ { print FILENAME "\t" FNR "\tassignment\t" $0 "\t" "    ;" }
