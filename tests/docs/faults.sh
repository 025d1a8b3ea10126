# faults.sh PYTHON ROOT TOOL COMPILER SITE: SITE with many faults, each of which the check has to name; and sources with
# faults, which make.py or the check has to.
set -euo pipefail
python=$1 root=$2 tool=$3 compiler=$4 site=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failed=0
whats=() says=()

check() { "$python" -B "$root/tools/docs/check.py" --tool "$tool" --source "$root" --site "$1"; }
make() { "$python" -B "$root/tools/docs/make.py" --tool "$tool" --compiler "$compiler" --source "$1" --out "$2"; }

# fault ROOT WHAT FILE EXPRESSION SAYS: changes ROOT/FILE by sed; that is to be named by a line with SAYS in it.
fault() {
    cp "$1/$3" "$work/before"
    sed -i -E "$4" "$1/$3"
    ! cmp -s "$work/before" "$1/$3" || { echo "changes nothing: $2" && failed=1; }
    whats+=("$2") says+=("$5")
}

# named COMMAND...: the command fails, and names all faults.
named() {
    ! "$@" >"$work/output" 2>&1 || { echo "passes: $*" && failed=1; }
    local i
    for i in "${!whats[@]}"; do
        grep -qF -- "${says[i]}" "$work/output" && continue
        echo "not noticed: ${whats[i]}; expected: ${says[i]}"
        failed=1
    done
    ((failed == 0)) || tail -n 40 "$work/output"
    whats=() says=()
}

cp -r "$site" "$work/site"
page() { fault "$work/site" "$1" "$2" "$3" "$2: $4"; }
page 'a link to a page that is not there' index.html '0,/channels\/queries.html/s//channels\/question.html/' \
    'the link channels/question.html leads nowhere'
page 'a link to an anchor that is not there' records/ZynOrder.html 's/(#trans-request-order)"/\1s"/' \
    'the link ../channels/transactions.html#trans-request-orders leads nowhere'
page 'a link out of the site' records/ZynOrderReq.html 's/href="..\/style.css"/href="https:\/\/example.net\/style.css"/' \
    'the link https://example.net/style.css leads nowhere'
page 'an entry of the search that leads nowhere' search-index.js 's/records\/ZynOrder.html"/records\/ZynOder.html"/' \
    'ZynOrder is said to be at records/ZynOder.html'
page 'a field left out' records/ZynOrderEntry.html '/id="field-brokerRef"/d' 'no row for the field brokerRef'
page 'a field of another presence' records/ZynOrderAmend.html '/id="field-brokerRef"/s/optional/required/' "the row of brokerRef lacks ['optional']"
page 'a field of another tag' records/ZynOrderEntry.html '/id="field-tradeReference"/s/8C \| AC/8B | AB/' 'the row of tradeReference lacks its tag 8C'
page 'a field of another type' records/ZynOrderEntry.html '/id="field-quantity"/s/>AsnInt</>AsnReal</' "the row of quantity lacks ['AsnInt']"
page 'a type linked to another' records/ZynOrderEntry.html '/id="field-price"/s/AsnFixedReal.html/AsnReal.html/' 'the row of price has no link to AsnFixedReal'
page 'a record without a word on it' records/ZynFirmReq.html 's/<div class="lead">.*<\/div>/<div class="lead"><\/div>/' \
    'it is not said what the type is for'
page 'an alternative left out' channels/queries.html '/id="query-reply-orderRep"/d' 'no row for query-reply 285, orderRep'
page 'an alternative of another number' channels/queries.html '/id="query-reply-firmRep"/s/>266</>265</' 'no row for query-reply 266, firmRep'
page 'a code of another meaning' records/ZynOrderRep.html '/id="code-[0-9]+"/s/required/optional/' \
    'code -125 is not told as the library does'
page 'no link back' records/ZynOrderTransfer.html 's/records\/ZynTransReqChoice.html//' 'no link to ZynTransReqChoice.orderTransfer'
page 'a function without a word on it' headers/values.h.html '/^<span id="ZynListCount">/,/<pre>/{/<p>/d}' "nothing is said of ['ZynListCount']"
page 'an octet turned' records/ZynOrderWithdraw.html 's/data-octets="30/data-octets="31/' 'the octets do not decode to the JSON'
page 'other octets shown' records/ZynQuoteRep.html 's/(<pre class="octets">(<mark>)?)BF/\1BE/' \
    'the octets shown are not those of the example'
page 'another value in the JSON' records/ZynQuoteAdd.html '/<pre class="json">/,/<\/pre>/s/(: )[0-9]+/\179/' 'the octets do not decode to the JSON'
page 'an element left out of the tree' records/ZynSecOptBoardId.html '/<tr.*data-from.*>secCode</d' 'the tree has'
page 'an example of another type' records/ZynFirmReq.html '/<pre class="json">/,/<\/pre>/{s/<mark>//;s/<\/mark>//}' \
    'what is highlighted in the JSON is not of the type'
page 'an example left out' records/ZynRoleRep.html 's/class="example"/class="exempt"/' 'there is no example'
rm "$work/site/records/ZynNegDeal.html"
whats+=('a page left out') says+=('records/ZynNegDeal.html: there is no page for the type')
named check "$work/site"

# source: a new copy of what the site is made of.
source() {
    rm -rf "$work/source"
    mkdir "$work/source"
    cp -r "$root"/{README.md,docs,include,records,tests} "$work/source"
}
source
fault "$work/source" 'a comment left out' records/Order.asn1 '/^-- Turns a transfer down/d' \
    'records/ZynOrderTransferReject.html: it is not said what the type is for'
fault "$work/source" 'a link of the guide' docs/guide/README.md '$s/$/\n[Nowhere](no-page.html)/' \
    'guide/index.html: the link no-page.html leads nowhere'
make "$work/source" "$work/made"
named check "$work/made"
source
fault "$work/source" 'a type that the modules do not have' records/Order.asn1 's/ZynOrderEntry/ZynOrderInput/' ZynOrderEntry
named make "$work/source" "$work/made"
source
fault "$work/source" 'a page of the guide left out' docs/guide/README.md '$s/$/\n- [Nowhere](no-page.md): nothing/' docs/guide/no-page.md
named make "$work/source" "$work/made"
((failed == 0)) && echo 'every fault was noticed'
exit $failed
