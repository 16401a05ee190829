# Checks that every test that docs/guarantees.md and docs/side-files.md name exists, so that a promise keeps its test.
#   perl tests/docs/guarantees.pl SOURCE_FOLDER
use strict;
use warnings;
use File::Find;

chdir shift or die "no such folder\n";
sub content { open my $file, '<', shift or die "$!\n"; local $/; <$file> }

my %cases;
my $sources = 0;
find({no_chdir => 1, wanted => sub {
    return unless m{/tests?/.*\.cpp$};
    ++$sources;
    for (content($_) =~ /^TEST(?:_F|_P)?\((\w+, *\w+)\)/gm) {
        my ($suite, $case) = split /, */;
        $cases{$suite} = $cases{"$suite.$case"} = 1;
    }
}}, map { "./$_" } qw(tests accessdriver linking stores fieldtext platform shell));
die "no tests found\n" unless $sources;

my $faults = 0;
for my $page ('docs/guarantees.md', 'docs/side-files.md') {
    # The tests of the rows of a table are in its last column; in prose they have a point or are suites.
    for my $name (content($page) =~ /`([A-Z]\w+(?:\.[A-Z]\w+)?)`/g) {
        next if $cases{$name} || $name eq 'PRAGMA';
        print STDERR "$page names a test that does not exist: $name\n";
        ++$faults;
    }
}
exit($faults ? 1 : 0);
