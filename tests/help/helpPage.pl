# Checks that the help page says what the program does: its tables of headings, sexes and messages beside the sources.
#   perl tests/help/helpPage.pl SOURCE_FOLDER
use strict;
use warnings;
use File::Find;

chdir shift or die "no such folder\n";
my $faults = 0;
sub fault { print STDERR "@_\n"; ++$faults }
sub content { open my $file, '<', shift or die; local $/; <$file> }
sub quoted { join '|', shift =~ /"(.*?)"/g }

# The rows of the first table behind a heading of the page, each as its cells; words are what is set as code.
my $page = content('help/converter_help.htm');
sub rows { my $id = shift; map { [/<td>(.*?)<\/td>/sg] } $page =~ /id="$id".*?<tbody>(.*?)<\/tbody>/s ? $1 =~ /<tr>(.*?)<\/tr>/sg : () }
sub words { join '|', shift =~ /<code>(.*?)<\/code>/g }

# Footnotes mark the fields that the routes to Old Tolvaris leave out or don't recognise.
my @fields = rows('fields');
my %footnotes = (imported => '', leftOut => 1, unknown => 2);
my @declared = content('converters/animalFields.cpp') =~ /Cav::(\w+),\s*(\{"[^}]*\})/g;
while (my ($cav, $words) = splice @declared, 0, 2) {
    last if $cav eq 'customOnly';
    my $row = shift @fields or last;
    fault("Headings of $row->[0]: ", words($row->[1]), ' for ', quoted($words)) if words($row->[1]) ne quoted($words);
    my ($footnote) = $row->[0] =~ /<sup>(.)</;
    fault("Footnote of $row->[0]") if ($footnote // '') ne $footnotes{$cav};
}
for my $number (1, 15) {
    my $row = shift @fields;
    fault("Headings of custom field $number") if !$row || words($row->[1]) ne "customfield$number|user field$number|$number";
}

my $sexes = content('fieldtext/sexWords.h');
for (rows('sex')) {
    my ($sex, $words) = @$_;
    next if $sex eq 'undefined';
    fault("Words for $sex: ", words($words)) if $sexes !~ /\b${sex}Words\b.*?\{(.*?)\}/s || quoted($1) ne words($words);
}

# Messages of the page, a title like a message of its own; rows in italics quote nothing.
my @messages;
for (map { split /<br>/, $_->[0] } grep { $_->[0] !~ /<em>/ } rows('messages')) {
    s/<.*?>//g, s/&quot;/"/g, s/\s+/ /g;
    push @messages, join '.*', map { quotemeta } grep { $_ ne '' } split / ?\.\.\. ?/;
}

# Texts of each statement of the program, adjacent ones joined.
my %said;
my $boxes = 0;
sub check {
    return if !/\.cpp$/ || $File::Find::dir =~ /\btests\b/ || $_ eq 'messageBox.cpp';
    (my $source = content($_)) =~ s/^\s*\/\/.*//mg;
    while ($source =~ /((?:"(?:\\.|[^"\\])*"|'(?:\\.|[^'\\])'|[^"';{}])+)/g) {
        my $statement = $1;
        (my $joined = $statement) =~ s/"\s*"//g;
        my $texts = join "\n", map { s/\\n//g; s/\\"/"/g; $_ } $joined =~ /"((?:\\.|[^"\\])*)"/g;
        my @matches = $texts eq '' ? () : grep { $texts =~ /$_/s } @messages;
        @said{@matches} = ();
        next if $texts eq '' || $statement !~ /showMessage\(|askYesNo\(/;
        ++$boxes;
        fault("Not explained, in $_: $texts") if !@matches;
    }
}
find(\&check, qw(platform fieldtext stores linking converters shell));
for (@messages) { fault("No message of the program: $_") if !exists $said{$_} }
fault("Only $boxes boxes and ", scalar @messages, ' messages found') if $boxes <= 20 || @messages <= 20;

for ($page =~ /href="#(.*?)"/g) { fault("No chapter $_") if $page !~ /id="$_"/ }
my $installed = content('shell/CMakeLists.txt');
for ($page =~ /src="pictures\/(.*?)\.png"/g) {
    fault("No picture $_") if !-f "docs/pictures/$_.png" || $installed !~ /foreach\(picture [^)]*\b$_\b/;
}

exit($faults > 0);
