import java.net.InetAddress;
import java.net.ServerSocket;
import org.apache.hadoop.conf.Configuration;
import org.apache.hadoop.hbase.HBaseConfiguration;
import org.apache.hadoop.hbase.client.Admin;
import org.apache.hadoop.hbase.client.Connection;
import org.apache.hadoop.hbase.client.ConnectionFactory;
import org.apache.hadoop.hbase.master.HMaster;
import org.apache.hadoop.hbase.thrift.ThriftServer;
import org.apache.hadoop.util.ToolRunner;

/** HBaseStart PORT [-f]: a whole HBase and its Thrift server in this process; ends when either ends. */
public class HBaseStart {
  public static void main(String[] args) throws Exception {
    try (ServerSocket free = new ServerSocket(0, 1, InetAddress.getByName("127.0.0.1"))) {
      System.setProperty("hollowmere.hbase.zkport", Integer.toString(free.getLocalPort()));
    }
    Thread master = new Thread(() -> {
      HMaster.main(new String[] {"start"});
      System.exit(1);
    });
    master.start();
    Configuration conf = HBaseConfiguration.create();
    awaitMaster(conf);
    String[] thrift = args.length > 1 ? new String[] {"-p", args[0], "-b", "127.0.0.1", args[1], "start"}
                                      : new String[] {"-p", args[0], "-b", "127.0.0.1", "start"};
    System.exit(ToolRunner.run(conf, new ThriftServer(conf), thrift));
  }

  /** The client's own retries would take long. */
  private static void awaitMaster(Configuration conf) throws Exception {
    while (true) {
      Configuration hasty = new Configuration(conf);
      hasty.setInt("hbase.client.retries.number", 0);
      try (Connection connection = ConnectionFactory.createConnection(hasty);
          Admin admin = connection.getAdmin()) {
        admin.listTableNames();
        if (admin.getClusterMetrics().getLiveServerMetrics().size() > 0) return;
      } catch (Exception notYet) {
        Thread.sleep(200);
      }
    }
  }
}
