#!/usr/bin/perl
# Single-line changes to code, and the switch by which one of them is in force.
# usage: mutant.pl choose FILE...          candidates, a line each: SUM FILE LINE OPERATOR OLD NEW (tabs between)
#        mutant.pl put CHOICE DIRECTORY    CHOICE's lines begin with a number more; those of the directory's files become
#                                          "mutant(NUMBER) ? NEW : OLD"; tells per line: NUMBER FILE FIRST LAST
# SUM is over file, operator and line, so that a choice by it lasts as long as the line does. No line moves.
use strict;
use warnings;

# What is looked for, and what comes in its place.
my @operators = (
    ['equal', ' == ', ' != '], ['unequal', ' != ', ' == '],
    ['less', ' < ', ' <= '], ['less-or-equal', ' <= ', ' < '],
    ['greater', ' > ', ' >= '], ['greater-or-equal', ' >= ', ' > '],
    ['and', ' && ', ' || '], ['or', ' || ', ' && '],
    ['plus', ' + ', ' - '], ['minus', ' - ', ' + '],
    ['plus-one', ' + 1', ''], ['minus-one', ' - 1', ''],
    ['not', '(!', ''], ['not', ' !', ' '],
    ['true', 'return true;', 'return false;'], ['false', 'return false;', 'return true;'],
    ['zero', 'return 0;', 'return 1;'], ['one', 'return 1;', 'return 0;'],
    ['add', ' += ', ' -= '],
);

sub slurp { local $/; open my $f, '<:raw', $_[0] or die "$_[0]: $!\n"; my $t = <$f>; return $t // ''; }

# FNV-1a, its bits mixed once more: near words lie far apart.
sub sum {
    my $s = 2166136261;
    $s = (($s ^ ord $_) * 16777619) & 0xffffffff for split //, $_[0];
    $s = (($s ^ ($s >> 15)) * 0x5bd1e995) & 0xffffffff;
    return sprintf '%08x', $s ^ ($s >> 13);
}

# The text with what stands in literals and comments blanked out, lengths and line ends kept.
sub bare {
    my $t = shift;
    $t =~ s{(R"\((?:.*?)\)"|"(?:\\.|[^"\\\n])*"|(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+'|//[^\n]*|/\*.*?\*/)}
           {my $s = $1; my $q = $s =~ m{^/} ? ' ' : '_'; $s =~ s/[^\n]/$q/g; $s}ges;
    return $t;
}

# Candidates of a file: [line number, operator, column in the line, length, in its place, kind].
sub candidates {
    my $text = shift;
    my (@found, $inside, $head);
    my $nr = 0;
    for my $line (split /\n/, $text) {
        $nr++;
        if ($line =~ /^[A-Za-z]/) { $head = ''; $inside = 0; }
        if (defined $head) {
            $head .= $line;
            if ($line =~ /\{\s*$/) {
                $inside = $head !~ /^(namespace|struct|class|enum|union|extern|template)|constexpr|consteval/;
                undef $head;
                next;
            }
            undef $head if $line =~ /[;}]\s*$/;
        }
        if ($line =~ /^\}/) { $inside = 0; }
        next if !$inside || $line =~ /\t|static_assert|constexpr|\bassert\(|TEKST\(|^\s*(case|default|#)|^\s*(static )?const .*\[\]/;
        for (@operators) {
            my ($name, $from, $to) = @$_;
            my $at = index($line, $from);
            next if $at < 0;
            next if $name =~ /-one$/ && substr($line, $at + length $from) =~ /^[\w.]/;
            next if $name eq 'not' && substr($line, $at + 2, 1) eq '=';
            my $long = length $from;
            next if $name =~ /^(plus|add)$/ && (substr($line, $at + $long, 1) eq '_' || substr($line, 0, $at) =~ /__$/); # texts
            ($at, $long) = ($at + 1, 1) if $from eq '(!'; # the bracket stays
            my $kind = $name eq 'add' ? 'statement' : $name =~ /^(true|false|zero|one)$/ ? 'return' : 'expression';
            push @found, [$nr, $name, $at, $long, $to, $kind];
        }
        # A statement that is a call, or an assignment that isn't a declaration: gone.
        push @found, [$nr, 'call', 0, length $line, '', 'statement']
            if $line =~ /^ +[a-zA-Z_][\w:.>-]*\(.*\);\s*$/ && $line !~ /return|throw/;
        push @found, [$nr, 'assignment', 0, length $line, '', 'statement']
            if $line =~ /^ +[a-zA-Z_][\w.>\[\]-]* [|&+-]?= .*;\s*$/;
    }
    return @found;
}

# From where to where the expression round a place reaches: up to a bracket that it doesn't open, or a sign that binds less.
sub reach {
    my ($bare, $at, $behind) = @_;
    my ($i, $depth) = ($at, 0);
    while ($i > 0) {
        my $c = substr($bare, $i - 1, 1);
        if ($c =~ /[)\]}]/) { $depth++; }
        elsif ($c =~ /[(\[{]/) { last if $depth == 0; $depth--; }
        elsif ($depth == 0) {
            last if $c =~ /[,;?]/;
            last if $c eq ':' && substr($bare, $i - 2, 1) ne ':' && substr($bare, $i, 1) ne ':';
            last if substr($bare, 0, $i) =~ /(?:\breturn|[^=!<>]=)$/ && substr($bare, $i, 1) ne '=';
        }
        $i--;
    }
    my ($j, $end) = ($behind, length $bare);
    $depth = 0;
    while ($j < $end) {
        my $c = substr($bare, $j, 1);
        if ($c =~ /[(\[{]/) { last if $c eq '{' && $depth == 0 && substr($bare, 0, $j) =~ /\)\s*$/; $depth++; }
        elsif ($c =~ /[)\]}]/) { last if $depth == 0; $depth--; }
        elsif ($depth == 0) {
            last if $c =~ /[,;?]/;
            last if $c eq ':' && substr($bare, $j - 1, 1) ne ':' && substr($bare, $j + 1, 1) ne ':';
        }
        $j++;
    }
    return ($i, $j);
}

sub choose {
    for my $file (@_) {
        my $text = slurp($file);
        my $bare = bare($text);
        my @line = split /\n/, $text;
        my %seen;
        for (candidates($bare)) {
            my ($nr, $name, $at, $long, $to, $kind) = @$_;
            my $old = $line[$nr - 1];
            my $new = $old;
            substr($new, $at, $long) = $to;
            $new = '    ;' if $long == length $old && $to eq '';
            next if $seen{"$name$old$new"}++; # the same line twice: the first
            print join("\t", sum("$file$name$old"), $file, $nr, $name, $old, $new), "\n";
        }
    }
}

sub put {
    my ($choice, $dir) = @_;
    my %of;
    open my $c, '<:raw', $choice or die "$choice: $!\n";
    while (<$c>) {
        chomp;
        my ($number, undef, $file, $nr, $name, $old, $new) = split /\t/, $_, -1;
        push @{$of{$file}}, [$number, $nr, $name, $old, $new];
    }
    for my $file (sort keys %of) {
        my $text = slurp("$dir/$file");
        my $bare = bare($text);
        my @start = (0);
        push @start, pos $text while $text =~ /\n/g;
        my %candidate;
        $candidate{"$_->[0] $_->[1]"} //= $_ for candidates($bare);
        my @edit;
        for (@{$of{$file}}) {
            my ($number, $nr, $name) = @$_;
            my (undef, undef, $at, $long, $to, $kind) = @{$candidate{"$nr $name"} or next};
            my $from = $start[$nr - 1] + $at;
            my ($i, $j, $put);
            if ($kind eq 'expression') {
                ($i, $j) = reach($bare, $from, $from + $long);
                my $was = substr($text, $i, $j - $i);
                $to =~ s/^( ?)$/$1!!/ if $name eq 'not'; # both arms of one type
                my $new = substr($text, $i, $from - $i) . $to . substr($text, $from + $long, $j - $from - $long);
                $new =~ s{\s*//[^\n]*}{}g;
                $new =~ s/\n\s*/ /g;
                $was =~ s/^(\s*)//;
                $put = "$1(mutant($number) ? ($new) : ($was";
                $put .= $was =~ m{//[^\n]*\s*$} ? "\n" : '';
                $put .= '))';
            } elsif ($kind eq 'return') {
                ($i, $j) = ($from, $from + $long);
                my ($was) = substr($text, $i, $long) =~ /return (\w+);/;
                my ($new) = $to =~ /return (\w+);/;
                $put = "return mutant($number) ? $new : $was;";
            } else {
                my $line = substr($bare, $start[$nr - 1], ($start[$nr] // length $bare) - $start[$nr - 1]);
                my ($blank) = $line =~ /^( *)/;
                $i = $start[$nr - 1] + length $blank;
                $line =~ /^(.*;)/ or next;
                $j = $start[$nr - 1] + length $1;
                my $was = substr($text, $i, $j - $i);
                my $new = $was;
                substr($new, $from - $i, $long) = $to if $name eq 'add';
                $put = $name eq 'add' ? "{ if (mutant($number)) $new else $was }" : "{ if (!mutant($number)) $was }";
            }
            push @edit, [$i, $j, $put, $number];
        }
        my $free = length $text;
        for (sort { $b->[0] <=> $a->[0] } @edit) {
            my ($i, $j, $put, $number) = @$_;
            next if $j > $free; # within another one
            $free = $i;
            my $first = 1 + (() = substr($text, 0, $i) =~ /\n/g);
            print join("\t", $number, $file, $first, $first + (() = substr($text, $i, $j - $i) =~ /\n/g)), "\n";
            substr($text, $i, $j - $i) = $put;
        }
        open my $f, '>:raw', "$dir/$file" or die "$dir/$file: $!\n";
        print $f "bool mutant(int number);\n#line 1\n", $text;
    }
}

my $what = shift // '';
if ($what eq 'choose') { choose(@ARGV); }
elsif ($what eq 'put') { put(@ARGV); }
else { die "usage: mutant.pl choose FILE... | put CHOICE DIRECTORY\n"; }
