%% Erlang's side: reads "name module type octets" lines, decodes each with what Erlang's asn1 generates from the schema,
%% and writes an answer in the form that interop/answers.h describes. The argument replaces the module, if given.
-module(zyn_interop).
-export([main/1]).

main(Module) ->
    ok = io:setopts(standard_io, [binary, {encoding, latin1}]),
    loop(Module).

loop(Only) ->
    case io:get_line("") of
        eof ->
            ok;
        Line ->
            [Name, Module, Type | Hex] = binary:split(string:trim(Line), <<" ">>, [global]),
            In = case Only of [] -> binary_to_atom(Module); [One] -> One end,
            Octets = binary:decode_hex(iolist_to_binary(Hex)),
            io:put_chars(["> ", Name, " " | answer(In, binary_to_atom(Type), Octets)]),
            loop(Only)
    end.

answer(Module, Type, Octets) ->
    case Module:decode(Type, Octets) of
        {ok, Value} -> ["taken\n", lines(<<>>, Value) | again(Module, Type, Value)];
        {error, {asn1, Reason}} -> ["refused ", reason(Reason), "\n"]
    end.

again(Module, Type, Value) ->
    case Module:encode(Type, Value) of
        {ok, Octets} -> ["< ", binary:encode_hex(Octets), "\n"];
        {error, {asn1, Reason}} -> ["< not ", reason(Reason), "\n"]
    end.

%% What failed, without the stack and the octets.
reason({{Reason, _}, Stack}) when is_list(Stack) -> reason(Reason);
reason({Reason, Stack}) when is_list(Stack) -> reason(Reason);
reason(Reason) when is_tuple(Reason) -> reason(element(1, Reason));
reason(Reason) -> io_lib:format("~0p", [Reason]).

lines(Path, Value) when is_map(Value), map_size(Value) =:= 0 ->
    [Path, " {}\n"];
lines(Path, Value) when is_map(Value) ->
    [lines(below(Path, atom_to_binary(Name)), Member) || {Name, Member} <- lists:sort(maps:to_list(Value))];
lines(Path, [Digit | _] = Decimal) when is_integer(Digit) ->
    [Path, " decimal '", binary:encode_hex(list_to_binary(Decimal)), "'H\n"];
lines(Path, Value) when is_list(Value) ->
    Numbers = lists:seq(0, length(Value) - 1),
    [Path, " [", integer_to_binary(length(Value)), "]\n" |
     [lines(below(Path, integer_to_binary(I)), Element) || {I, Element} <- lists:zip(Numbers, Value)]];
lines(Path, {Mantissa, 2, Exponent}) ->
    [Path, " ", real(Mantissa, Exponent), "\n"];
lines(Path, {Name, Value}) when is_atom(Name) ->
    lines(below(Path, atom_to_binary(Name)), Value);
lines(Path, Value) ->
    [Path, " ", leaf(Value), "\n"].

below(<<>>, Name) -> Name;
below(Path, Name) -> <<Path/binary, ".", Name/binary>>.

leaf(Value) when is_integer(Value) -> integer_to_binary(Value);
leaf(Value) when is_atom(Value) -> atom_to_binary(Value);
leaf(Value) when is_binary(Value) -> ["'", binary:encode_hex(Value), "'H"];
leaf(Value) when is_bitstring(Value) -> ["'", [$0 + Bit || <<Bit:1>> <= Value], "'B"].

real(0, _) -> "0p0";
real(Mantissa, Exponent) when Mantissa rem 2 =:= 0 -> real(Mantissa div 2, Exponent + 1);
real(Mantissa, Exponent) -> [integer_to_binary(Mantissa), "p", integer_to_binary(Exponent)].
