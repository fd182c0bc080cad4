// movie: version="10" rate="20"
function broken(a:int {
    return a;
}
