# Files kept open on a host, for tests/hosts/run: perl lezer.pl DIRECTORY COUNT [lock]. A line "w X" writes X into each, "r X"
# answers in how many something else is read.
use strict;
use warnings;
use Fcntl;
$| = 1;
my ( $map, $aantal, $slot ) = @ARGV;
my ( @f, $gelezen );
my $byte = pack( 's s x4 q q i x4', F_WRLCK, 0, 0, 1, 0 ); # struct flock
for my $i ( 1 .. $aantal ) {
    sysopen( my $f, "$map/f$i", O_RDWR | O_CREAT ) or die "$map/f$i: $!";
    !$slot or fcntl( $f, F_SETLK, my $s = $byte ) or die "lock: $!";
    push @f, $f;
}
print "open\n";
while (<STDIN>) {
    my ( $wat, $letter ) = split;
    my $oud = 0;
    for my $f (@f) {
        sysseek( $f, 0, 0 );
        if ( $wat eq 'w' ) { syswrite( $f, $letter x 512 ) == 512 or $oud++ }
        else               { $oud++ unless ( sysread( $f, $gelezen, 512 ) // 0 ) == 512 && $gelezen eq $letter x 512 }
    }
    print "$oud\n";
}
