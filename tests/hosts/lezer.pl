# Pairs kept open on a host, for tests/hosts/run: perl lezer.pl PROGRAMS DIRECTORY COUNT [lock], one ixsh for each. A line "w X"
# writes X into the first record of each, and keeps it locked; "r X" answers in how many something else is read.
use strict;
use warnings;
use IPC::Open2;
$| = 1;
my ( $bin, $map, $aantal, $slot ) = @ARGV;
my @paren;
my $record = sub { "hex:" . unpack 'H*', pack 'a8 a56', 'eerste', shift };
my $vraag = sub {
    my ( $p, $regel ) = @_;
    print { $p->{in} } "$regel\n";
    return readline( $p->{uit} ) // '';
};
chdir $map or die "$map: $!";
for my $i ( 1 .. $aantal ) {
    my %p;
    open2( $p{uit}, $p{in}, "$bin/ixsh" ) or die "ixsh: $!";
    $p{in}->autoflush;
    $vraag->( \%p, "hex 1" );
    if ($slot) {
        $vraag->( \%p, "create P$i 64 k,NODUPS,C,1,8" );
        $vraag->( \%p, "write " . $record->('0') );
        $vraag->( \%p, "close" );
    }
    $vraag->( \%p, "open P$i 2" ) =~ /^1 / or die "P$i is not opened";
    !$slot or $vraag->( \%p, "readl " . $record->('') ) =~ /^1 / or die "P$i is not locked";
    push @paren, \%p;
}
print "open\n";
while (<STDIN>) {
    my ( $wat, $letter ) = split;
    my $inhoud = $record->( $letter x 56 );
    my $oud = 0;
    for my $p (@paren) {
        if ( $wat eq 'w' ) { $vraag->( $p, "writek $inhoud" ) =~ /^1 / or $oud++ }
        else               { index( $vraag->( $p, "read $inhoud" ), $inhoud ) >= 0 or $oud++ }
    }
    print "$oud\n";
}
