package game.tools
{
    public class Answer
    {
        public function get value():int { return 42; }
    }
}
